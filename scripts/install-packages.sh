#!/bin/sh
# Installs what is missing of the Debian packages that the given lists name (default: packages.txt beside this script).
# Needs to be root, or sudo, only when something is missing.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
[ $# -gt 0 ] || set -- "$here/packages.txt"

wanted=$(sed -e 's/#.*//' "$@")
missing=
for package in $wanted; do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing" >&2
as_root=
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
        echo "These packages are missing, and there is neither root nor sudo to install them:$missing" >&2
        exit 1
    fi
    as_root=sudo
fi
# A list of packages that is out of date names files that are gone: it is fetched anew first.
$as_root apt-get update >&2
# shellcheck disable=SC2086 # the list is meant to be split
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends $missing >&2
