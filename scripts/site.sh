#!/usr/bin/env bash
# site.sh: the documents and the API reference as a site in build/site, for a web server or to be opened
# as files (without search then). Needs no network; a link between documents that leads nowhere, or a
# page that loads something from elsewhere, is an error.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
command -v mkdocs >/dev/null && [ -d /usr/share/doc/mkdocs-material ] || {
    echo "Please install these packages: apt-get install --no-install-recommends mkdocs mkdocs-material" >&2
    exit 1
}
"$root/scripts/build.sh" release api_reference

source=$root/build/site-source
rm -rf "$source"
mkdir -p "$source"
cp -r "$root"/{README.md,CHANGELOG.md,LICENSE,docs,examples} "$source"
cp -r "$root/build/release/api-reference/html" "$source/api"
cd "$root"
mkdocs build --quiet --strict --clean

if grep -rlE '<(script|img|iframe)[^>]* src="?(https?:)?//|<link[^>]* href="?(https?:)?//[^>]*stylesheet|url\("?(https?:)?//' \
    --include='*.html' --include='*.css' build/site; then
    echo "These files load from the network." >&2
    exit 1
fi
echo "build/site/index.html"
