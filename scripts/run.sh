#!/usr/bin/env bash
# run.sh [FILE…]   Builds the viewer and opens it on the files, or on samples/. Without a display it
#                  runs on a virtual one, leaves a screenshot, and ends.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/screenshot.sh"

(($#)) || set -- "$root"/samples/*.*
files=()
for file; do
    [[ -e $file ]] || die "there is no $file"
    files+=("$(windows_path "$file")")
done

build x86 TessaryViewer
ensure_wine_environment
viewer=$app_dir/TessaryViewer.exe
if ! ((virtual_display)); then run_wine "$viewer" "${files[@]}"; fi

install_packages "${screenshot_packages[@]}"
say "no display: running on the virtual one"
(run_wine "$viewer" "${files[@]}") &
process=$!
end_viewer() {
    kill "$process" 2>/dev/null || return 0
    wait "$process" 2>/dev/null || true
}
trap end_viewer EXIT

wait_for_window tessaryviewer.exe 60 "$process" || die "the viewer showed no window"
screenshot=$root/build/screenshot.png
take_screenshot "$screenshot" 15
say "screenshot: $screenshot"
