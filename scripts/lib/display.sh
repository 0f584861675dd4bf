# The X display: the caller's own, or one virtual display that all scripts share. The virtual one
# ends by itself a while after its last client has left.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"
source "${BASH_SOURCE[0]%/*}/messages.sh"
source "${BASH_SOURCE[0]%/*}/lock.sh"

display_file=$cache/display

# ensure_display: exports a DISPLAY that answers. virtual_display is 1 when nobody sees it.
ensure_display() {
    virtual_display=0
    if [[ -n ${DISPLAY:-} ]] && display_answers "$DISPLAY"; then
        [[ $(shared_display) != "$DISPLAY" ]] || virtual_display=1
        return
    fi
    # shellcheck disable=SC2034  # read by the scripts that source this file
    virtual_display=1
    DISPLAY=$(shared_display)
    if [[ -z $DISPLAY ]] || ! display_answers "$DISPLAY"; then
        with_lock display start_shared_display
        DISPLAY=$(shared_display)
    fi
    export DISPLAY
}

shared_display() {
    local number=
    [[ ! -f $display_file ]] || read -r number _ <"$display_file" || true
    printf '%s' "$number"
}

display_answers() { xdpyinfo -display "$1" >/dev/null 2>&1; }

start_shared_display() {
    local display
    display=$(shared_display)
    if [[ -n $display ]] && display_answers "$display"; then return; fi # another caller was faster

    local pipe
    pipe=$(mktemp -d)
    mkfifo "$pipe/number"
    setsid Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -terminate 60 \
        3>"$pipe/number" </dev/null >/dev/null 2>&1 &
    local server=$! number=
    read -r -t 30 number <"$pipe/number" || true
    rm -r "$pipe"
    [[ -n $number ]] || die "the virtual display (Xvfb) did not start"
    printf ':%s %s\n' "$number" "$server" >"$display_file"
    # The first client starts the clock that ends an unused display.
    display_answers ":$number" || die "the virtual display :$number does not answer"
}

# stop_shared_display: ends it at once.
stop_shared_display() {
    local server=
    [[ -f $display_file ]] || return 0
    read -r _ server <"$display_file" || true
    rm -f "$display_file"
    if [[ $(cat "/proc/$server/comm" 2>/dev/null) == Xvfb ]]; then kill "$server"; fi
}
