# The C++ files that are our own.
# shellcheck shell=bash
source "${BASH_SOURCE[0]%/*}/paths.sh"

own_folders=(src helpers plugins tests bench)

# own_files PATTERN…: the paths whose name matches one of the patterns, each ended by a NUL.
own_files() {
    local pattern names=(-false)
    for pattern; do
        names+=(-o -name "$pattern")
    done
    (cd "$root" && for folder in "${own_folders[@]}"; do
        if [[ -d $folder ]]; then find "$PWD/$folder" -type f '(' "${names[@]}" ')' -print0; fi
    done)
}
