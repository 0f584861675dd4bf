# Where things are: the checkout, what is built in it, and the cache that outlives a checkout.
# shellcheck shell=bash

root=$(cd "${BASH_SOURCE[0]%/*}/../.." && pwd -P)

if [[ -z ${HOME:-} ]]; then
    HOME=$(getent passwd "$(id -u)" | cut -d: -f6)
    export HOME
fi
cache=${XDG_CACHE_HOME:-$HOME/.cache}/tessary
mkdir -p "$cache"

# shellcheck disable=SC2034  # read by the scripts that source this file
{
    x86_build=$root/build/x86
    native_build=$root/build/native
    app_dir=$x86_build/bin
}
