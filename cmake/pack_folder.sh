#!/bin/sh
# Packs a folder into a zip whose bytes depend on the names and contents of its files only:
#   cmake/pack_folder.sh FOLDER OUT.zip
# A setup.local.xml is left out.
set -eu
folder=$(cd "$1" && pwd)
out=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
LC_ALL=C
TZ=UTC
export LC_ALL TZ

cp -R "$folder/." "$work"
rm -f "$work/setup.local.xml" "$out"
cd "$work"
find . -type f -exec chmod 644 {} + -exec touch -d 2026-01-01T00:00:00Z {} +
find . -type f | sed 's|^\./||' | sort | zip -X -q -9 -n .png:.jpg:.ogg -@ "$out"
