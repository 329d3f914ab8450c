#!/usr/bin/env bash
# Builds the Debian package and lets lintian judge it: scripts/package.sh. It says where the package is.
set -euo pipefail
exec </dev/null
umask 022

root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
build=$root/build/package

"$root/scripts/packages.sh" run package
"$root/scripts/build.sh" package
if ninja -C "$build" -t query userguide >/dev/null 2>&1; then
    "$root/scripts/build.sh" package userguide
fi
# The same sources make the same package, to the byte.
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$root/packaging/debian/changelog" -S Timestamp)
export SOURCE_DATE_EPOCH
echo "Packing"
rm -rf "$build/package"
if ! (cd "$build" && cpack) >"$build/cpack.log" 2>&1; then
    cat "$build/cpack.log" >&2
    exit 1
fi
package=$(echo "$build"/package/*.deb)
lintian --fail-on error,warning --allow-root "$package"
echo "Packed: $package"
