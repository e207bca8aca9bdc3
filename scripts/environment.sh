# Sourced by the other scripts: where things live. Each may be set from outside.
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export TOLVENAR_CACHE=${TOLVENAR_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tolvenar}
export CE32_ROOT=${CE32_ROOT:-$TOLVENAR_CACHE/wine32}
export WINEPREFIX=${WINEPREFIX:-$TOLVENAR_CACHE/prefix}
build=$repo/build
export DEBIAN_FRONTEND=noninteractive
