#!/usr/bin/env bash
# Installs the Debian packages named on the command line that are not installed yet.
# Runs apt-get through sudo when not root, and refreshes the package lists first
# when one of the packages is unknown to them.
set -euo pipefail

missing=()
for pkg in "$@"; do
    status=$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$pkg")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive

echo ":: installing ${missing[*]}"
for pkg in "${missing[@]}"; do
    if ! apt-cache show "$pkg" >/dev/null 2>&1; then
        "${sudo[@]}" apt-get update -qq
        break
    fi
done
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
