#!/usr/bin/env bash
# Installs the Debian package on a clean system tree and opens a document there as a desktop would:
#
#   scripts/check-package.sh [PACKAGE]     by default the one that scripts/package.sh has made
#
# Needs root, for chroot, and a mirror of Debian. Pictures of what was shown: build/package-check.
set -euo pipefail
exec </dev/null

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
package=${1:-$(echo "$root"/build/package/package/quorvane_*.deb)}
mirror=${QUORVANE_MIRROR:-http://deb.debian.org/debian}
work=$root/build/package-check
tree=$work/tree

if [ ! -f "$package" ]; then
    echo "scripts/check-package.sh: there is no package $package; scripts/package.sh makes it" >&2
    exit 2
fi
"$root/scripts/packages.sh" package
mkdir -p "$work"
if [ ! -f "$work/base.tar" ]; then
    echo "Fetching a clean system"
    rm -rf "$tree"
    debootstrap --variant=minbase bookworm "$tree" "$mirror" >"$work/debootstrap.log"
    tar -C "$tree" -cf "$work/base.tar.part" .
    mv "$work/base.tar.part" "$work/base.tar"
fi
rm -rf "$tree"
mkdir "$tree"
tar -C "$tree" -xf "$work/base.tar"

inside() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 TERM=dumb \
        DEBIAN_FRONTEND=noninteractive chroot "$tree" "$@"
}

echo "Installing $(basename "$package")"
cp "$package" "$tree/root/quorvane.deb"
cp "$root/scripts/with-x11" "$root/packaging/debian/tryout.sh" "$tree/root/"
sed '1,/^$/d' "$root/tests/data/vectors/aes-20400.vector" >"$tree/root/letter.quorvane"
inside apt-get update -q >"$work/apt.log"
inside apt-get install -q -y --no-install-recommends /root/quorvane.deb >>"$work/apt.log"
# What a desktop brings along, and what the check itself needs.
inside apt-get install -q -y --no-install-recommends dbus desktop-file-utils xdg-utils \
    libfile-mimeinfo-perl libglib2.0-bin xvfb openbox xdotool imagemagick >>"$work/apt.log"

status=0
inside /root/with-x11 --dbus /root/tryout.sh 2>"$work/tryout.log" || status=$?
rm -rf "$work/pictures"
cp -r "$tree/root/pictures" "$work/pictures"
inside apt-get purge -q -y quorvane >>"$work/apt.log"
left=$(find "$tree/usr" -iname '*quorvane*' -not -path '*/mime/*')
if [ -n "$left" ]; then
    echo "FAULT left after the package was removed: $left"
    status=1
fi
echo "Pictures: $work/pictures"
exit "$status"
