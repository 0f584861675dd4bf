# The manual as a page that any browser shows.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/packages.sh"

# The machine's own Python, which its packages extend; another one may come first in the PATH.
system_python=(/usr/bin/python3 -I -B)

# render_manual FOLDER: writes FOLDER/index.html and its pictures.
render_manual() {
    install_packages "${manual_packages[@]}"
    rm -rf "$1"
    "${system_python[@]}" "$root/scripts/lib/render_manual.py" \
        "$root/docs/manual.ja.md" "$root/docs/manual.css" "$1/index.html"
}
