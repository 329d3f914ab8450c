#!/usr/bin/env bash
# Installs the Debian packages of the groups named (run, tour, test...) that are missing,
# as scripts/packages lists them. Says what it does, and nothing where nothing is to be done.
#
#   scripts/packages.sh run tour          installs
#   scripts/packages.sh --list run tour   prints the names only
set -euo pipefail

scripts=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")

list=no
if [ "${1:-}" = --list ]; then
    list=yes
    shift
fi
if [ $# -eq 0 ]; then
    echo "usage: scripts/packages.sh [--list] GROUP..." >&2
    exit 2
fi

wanted=()
while IFS='| ' read -r name group _; do
    case " $* " in
        *" $group "*) wanted+=("$name") ;;
    esac
done < <(grep -v '^#' "$scripts/packages")
if [ ${#wanted[@]} -eq 0 ]; then
    echo "scripts/packages.sh: no package stands under: $*" >&2
    exit 2
fi
if [ "$list" = yes ]; then
    printf '%s\n' "${wanted[@]}"
    exit 0
fi

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system: the packages are taken to be here already (scripts/packages)."
    exit 0
fi

# One question for all; a name that dpkg has never heard of is missing too.
installed=$(dpkg-query -W -f '${db:Status-Abbrev}${Package}\n' "${wanted[@]}" 2>/dev/null \
    | sed -n 's/^ii //p' || true)
missing=()
for name in "${wanted[@]}"; do
    if ! grep -qxF -- "$name" <<<"$installed"; then
        missing+=("$name")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Missing: ${missing[*]}" >&2
        echo "There is no sudo here. As root: apt-get update &&" \
            "apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
    [ -t 1 ] || as_root=(sudo -n) # Nobody is there to type a password.
fi
apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 \
        apt-get -q -y -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 -o Acquire::Retries=3 "$@" \
        </dev/null
}
echo "Installing with apt: ${missing[*]}"
apt update
apt install --no-install-recommends "${missing[@]}"
