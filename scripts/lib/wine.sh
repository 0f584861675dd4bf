# The project's Wine environment: a prefix of its own, Japanese, that never asks anything.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/lock.sh"
source "${BASH_SOURCE[0]%/*}/display.sh"
source "${BASH_SOURCE[0]%/*}/wine_root.sh"

prefix_ready_name=.tessary-ready

# ensure_wine_environment: makes ready everything that run_wine needs.
ensure_wine_environment() {
    ensure_wine
    ensure_display
    choose_prefix
    export WINEPREFIX WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all} WINESERVER=$wine_server
    with_lock wine start_wine
}

# What a visible and a virtual display need differs, and tests must not meet the windows of a
# viewer in use: each has a prefix of its own.
choose_prefix() {
    prefix_settings=("$root/scripts/lib/wine_prefix.reg")
    WINEPREFIX=$cache/wine-prefix
    if ! wine_is_native; then WINEPREFIX+=-i386; fi
    if ((virtual_display)); then
        WINEPREFIX+=-virtual
        prefix_settings+=("$root/scripts/lib/wine_prefix_virtual.reg")
    fi
}

# run_wine PROGRAM ARGS…: replaces this process; its status is the program's. The recycle bin is the
# prefix's own: what programs delete there is nobody's.
run_wine() {
    in_wine_root env "LC_ALL=$japanese_locale" "LANG=$japanese_locale" "XDG_DATA_HOME=$WINEPREFIX/share" \
        "$wine_loader" "$@"
}

# windows_path PATH: how a Windows program names a file of this machine.
windows_path() {
    local path
    path=$(realpath --no-symlinks --canonicalize-missing -- "$1")
    printf 'Z:%s' "${path//\//\\}"
}

prefix_is_ready() {
    cat "${prefix_settings[@]}" | cmp -s - "$WINEPREFIX/$prefix_ready_name"
}

make_prefix() {
    local log=$cache/wine-prefix.log
    say "making the Wine prefix $WINEPREFIX"
    [[ -f $WINEPREFIX/$prefix_ready_name ]] || rm -rf "$WINEPREFIX" # half-made
    fill_prefix </dev/null >"$log" 2>&1 || die "the Wine prefix could not be made; see $log"
    # The server writes the settings to disk when it ends.
    (in_wine_root "$wine_server" --kill) </dev/null >/dev/null 2>&1 || true
    cat "${prefix_settings[@]}" >"$WINEPREFIX/$prefix_ready_name"
}

fill_prefix() {
    # Not even the making of the prefix asks for the .NET and HTML packages.
    (WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe=' run_wine wineboot --update) || return
    # The font of title bar buttons, check marks and arrows; Debian's Wine looks for it in the wrong
    # folder.
    (in_wine_root cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/") || return
    cat "${prefix_settings[@]}" | iconv -f UTF-8 -t UTF-16 >"$WINEPREFIX/drive_c/settings.reg"
    (run_wine regedit /S 'C:\settings.reg')
}

# start_wine: a server that stays for a minute makes the next program start at once. Neither it nor
# what the first program brings up (the services) may keep the caller's output open, or whoever
# reads that waits for them: so the first program is one of ours, without any output.
start_wine() {
    if ! prefix_is_ready; then make_prefix; fi
    mkdir -p "$WINEPREFIX/share"
    if wineserver_runs; then return; fi
    (in_wine_root "$wine_server" --persistent=60) </dev/null >/dev/null 2>&1 || true
    (run_wine cmd /c exit) </dev/null >/dev/null 2>&1 || die "Wine does not start"
}

# While it runs the server keeps a file beside its socket locked. Debian's Wine keeps the name of the
# folder above in the prefix.
wineserver_runs() {
    local above=.wine-$UID identity folder lock
    [[ ! -f $WINEPREFIX/wineserver ]] || read -r above <"$WINEPREFIX/wineserver" || true
    identity=$(stat --format '%D %i' "$WINEPREFIX")
    printf -v folder '/tmp/%s/server-%x-%x' "$above" "0x${identity% *}" "${identity#* }"
    [[ -S $folder/socket ]] || return 1
    lock=$(stat --format %i "$folder/lock") || return 1
    grep -q ":$lock " /proc/locks
}

# stop_wine: ends the programs of all our prefixes, their servers and the shared display.
stop_wine() {
    local prefix
    for prefix in "$cache"/wine-prefix*; do
        [[ -d $prefix ]] || continue
        (WINEPREFIX=$prefix in_wine_root "$wine_server" --kill) </dev/null >/dev/null 2>&1 || true
    done
    stop_shared_display
}
