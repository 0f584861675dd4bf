#!/usr/bin/env bash
# manual.sh   Renders docs/manual.ja.md, with its pictures, into build/manual/index.html.
#             make_manual_images.sh takes the pictures.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/manual.sh"

render_manual "$root/build/manual"
say "manual: $root/build/manual/index.html"
