#!/usr/bin/env bash
# make_manual_images.sh [PROGRAM_FOLDER]
#           Takes the pictures of the manual, docs/images/manual/*.png, from the real program: builds
#           it, plays the user's part on samples/, and photographs its windows. PROGRAM_FOLDER may
#           name a finished application folder, which is then not built. A picture that could not
#           be taken is named at the end; the old one stays, and the status is 1.
# The display, the Wine prefix and the folders of the scenes are this script's own: nothing else
# that runs gets into the pictures, and no path of this machine.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib/paths.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/packages.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/wine.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/screenshot.sh"
source "$(dirname "${BASH_SOURCE[0]}")/lib/manual.sh"

images=$root/docs/images/manual
program_name=tessaryviewer.exe # the class of its windows
missing=() viewer=

program_folder=${1:-$app_dir}
install_packages "${wine_packages[@]}" "${screenshot_packages[@]}" "${manual_packages[@]}"
(($#)) || build x86 TessaryViewer
ensure_wine

unset DISPLAY
cache+=/manual
mkdir -p "$cache" "$images"
# shellcheck disable=SC2034  # read by what makes the environment
display_file=$cache/display

leave() {
    end_viewer
    rm -rf "$pictures" "$program" "$converted"
    stop_wine
}

make_scene() {
    rm -rf "$pictures" "$program" "$converted"
    mkdir "$pictures" "$program" "$converted"
    cp "$program_folder"/* "$program/"
    cp "$root"/samples/*.* "$pictures/"
    (
        cd "$pictures"
        convert 夕暮れの山.jpg -modulate 112,70,106 -quality 88 朝の山.jpg
        convert 夕暮れの山.jpg -modulate 98,40,78 -quality 88 冬の山.jpg
        convert 夕暮れの山.jpg -modulate 48,85,82 -quality 88 夜の山.jpg
        "${system_python[@]}" -m zipfile --create 山の写真集.zip 夕暮れの山.jpg 夜の山.jpg 朝の山.jpg 冬の山.jpg
    )
}

# start_viewer FILE…: with settings as new, on the files of the folder of pictures.
start_viewer() {
    (run_wine reg delete 'HKCU\Software\Tessary_Viewer' /f) >/dev/null 2>&1 || true
    local setting
    for setting in "${settings[@]}"; do
        (run_wine reg add "HKCU\\Software\\Tessary_Viewer\\${setting%%|*}" \
            /v "$(cut -d'|' -f2 <<<"$setting")" /d "${setting##*|}" /f) >/dev/null
    done
    (run_wine 'C:\TessaryViewer\TessaryViewer.exe' "${@/#/C:\\写真\\}") >/dev/null 2>&1 &
    viewer=$!
    wait_for_window "$program_name" 60 "$viewer" || die "the viewer showed no window"
    settle
}

end_viewer() {
    [[ -n $viewer ]] || return 0
    (run_wine taskkill /F /IM TessaryViewer.exe) >/dev/null 2>&1 || true
    wait "$viewer" 2>/dev/null || true
    viewer=
}

# settle: until nothing moves any more.
settle() { take_screenshot "$cache/screen.png" 15; }

# press KEY…: one after the other, as a user does.
press() {
    local key
    for key; do
        xdotool key "$key"
        settle
    done
}

# window TITLE: the visible window of that title.
window() { xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | tail -n 1 || true; }

# picture NAME [TITLE]: all windows of the program, or the one of that title alone.
picture() {
    local name=$1 windows id left top right bottom layers=() file=$cache/picture.png
    local X Y WIDTH HEIGHT
    settle
    if (($# > 1)); then
        windows=$(window "$2")
    else
        windows=$(xdotool search --onlyvisible --class "$program_name" || true)
    fi
    if [[ -z $windows ]]; then
        missing+=("$name")
        return
    fi
    left=99999 top=99999 right=0 bottom=0
    for id in $windows; do
        eval "$(xdotool getwindowgeometry --shell "$id")"
        layers+=('(' "$cache/screen.png" -crop "${WIDTH}x$HEIGHT+$X+$Y" ')')
        if ((X < left)); then left=$X; fi
        if ((Y < top)); then top=$Y; fi
        if ((X + WIDTH > right)); then right=$((X + WIDTH)); fi
        if ((Y + HEIGHT > bottom)); then bottom=$((Y + HEIGHT)); fi
    done
    # Only the windows: what the display shows between them is nobody's.
    convert -size 1280x1024 xc:none "${layers[@]}" -background none -flatten \
        -crop "$((right - left))x$((bottom - top))+$left+$top" +repage -strip \
        -define png:exclude-chunks=date,time "$file"
    mv "$file" "$images/$name.png"
    say "docs/images/manual/$name.png"
}

all_pictures=(山の写真集.zip 夕暮れの山.jpg 夜の山.jpg 朝の山.jpg 冬の山.jpg bubbles.png pinwheel.gif weave.bmp)
fitted='General|FixSizeValue|1' # into 640 × 480

scene_viewing() {
    settings=("$fitted")
    start_viewer "${all_pictures[@]:1}"
    picture main
    press shift+F10
    picture popup
    press Escape ctrl+Delete ctrl+Delete
    picture delete_list
    end_viewer
}

# The bar alone, which is a window of its own for that.
scene_playing() {
    # It plays, and stays in the picture.
    settings=("$fitted" 'General|SlideShowTime|30000' 'Window|ControlBarDock|0')
    start_viewer "${all_pictures[@]:1}"
    press v
    picture playing コントロールバー
    end_viewer
}

scene_archive() {
    settings=("$fitted")
    start_viewer 山の写真集.zip
    press Return
    picture archive
    end_viewer
}

scene_dialogs() {
    settings=("$fitted" 'General|OpenPath|C:\写真' 'General|SavePath|C:\写真')
    start_viewer 夕暮れの山.jpg
    press ctrl+d
    picture open_folder フォルダを開く
    press Escape ctrl+s
    picture save_as 保存
    press alt+d
    picture save_options 画像保存オプション
    end_viewer
}

scene_converter() {
    settings=("$fitted" 'Convert|SaveType1|1' 'Convert|SaveType2|2')
    start_viewer "${all_pictures[@]:1}"
    press alt+f a alt+s
    xdotool type 'C:\Converted'
    picture converter 画像一括コンバータ
    press alt+c
    picture converter_log 画像一括コンバータ
    end_viewer
}

scene_options() {
    settings=("$fitted")
    start_viewer 夕暮れの山.jpg
    press F8
    picture options_plugins 環境設定
    press Down
    picture options_converter 環境設定
    press Down
    picture options_display 環境設定
    press Down
    picture options_formats 環境設定
    end_viewer
}

take_pictures() {
    local scene
    ensure_wine_environment
    drive=$WINEPREFIX/drive_c
    pictures=$drive/写真
    program=$drive/TessaryViewer
    converted=$drive/Converted # plain letters, which a script can type
    trap leave EXIT
    make_scene
    for scene in viewing playing archive dialogs converter options; do
        say "the scene: $scene"
        "scene_$scene"
    done
}

with_lock pictures take_pictures
if ((${#missing[@]})); then die "these pictures could not be taken: ${missing[*]}"; fi
