#!/usr/bin/env bash
# Builds the Debian package and checks it as a user's machine would see it: lintian, the desktop
# entry, installing with apt-get (which pulls in its dependencies), the file type of a project,
# the programs from /usr/bin, and that removing it leaves nothing behind. Needs root.
set -euo pipefail
cd "$(dirname "$0")/.."
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; fi
$SUDO apt-get install -y -qq --no-install-recommends lintian desktop-file-utils xdg-utils shared-mime-info >/dev/null
make package
deb=$(ls build/package/sonitra_*.deb | head -n 1)
echo "== lintian"
lintian --fail-on error "$deb"
echo "== desktop-file-validate"
desktop-file-validate packaging/sonitra.desktop
echo "== install"
$SUDO apt-get install -y -qq "./$deb" >/dev/null
/usr/bin/sonitra-cli --version
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
touch "$work/a.snp"
type=$(xdg-mime query filetype "$work/a.snp")
echo "a.snp is $type"
[ "$type" = "application/x-sonitra-project" ]
listed=$(dpkg -L sonitra | grep -v '/$' || true)
echo "== remove"
$SUDO dpkg -r sonitra >/dev/null
left=""
for f in $listed; do
  if [ -f "$f" ]; then left="$left $f"; fi
done
if [ -n "$left" ]; then echo "left behind:$left"; exit 1; fi
[ "$(xdg-mime query filetype "$work/a.snp")" != "application/x-sonitra-project" ]
echo "package checks passed"
