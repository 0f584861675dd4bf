# Looking at a window on the display.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/messages.sh"

# wait_for_window CLASS SECONDS PROCESS: true when PROCESS shows a window of CLASS in time.
wait_for_window() {
    local class=$1 end=$((SECONDS + $2)) process=$3
    while ((SECONDS < end)); do
        if xdotool search --onlyvisible --class "$class" >/dev/null 2>&1; then return; fi
        kill -0 "$process" 2>/dev/null || return 1
        sleep 0.1
    done
    return 1
}

# take_screenshot FILE SECONDS: the whole display, once it has stopped changing or the time is over.
take_screenshot() {
    local file=$1 end=$((SECONDS + $2)) last='' now
    while
        import -window root "$file"
        now=$(identify -format '%#' "$file")
        [[ $now != "$last" ]] && ((SECONDS < end))
    do
        last=$now
        sleep 0.5
    done
}
