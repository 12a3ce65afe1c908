# What root, run and all have in common; they source this.

# Where the roots are kept: outside any clone, so that the next one finds them again.
roots=${TILEWRIGHT_ROOTS:-${XDG_CACHE_HOME:-$HOME/.cache}/tilewright/roots}
checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

# cannot REASON: ends, in one line, what this machine is not able to do. Callers tell it by the code
# from something that is wrong.
cannot_be_had=3
cannot() {
    echo "$release: cannot be had: $1" >&2
    exit $cannot_be_had
}

# need_room FOLDER MEGABYTES: on the disk of that folder.
need_room() {
    local free
    free=$(df --output=avail -m "$1" | tail -n 1)
    [ "$free" -ge "$2" ] || cannot "no room on the disk: $1 has $((free)) MB and needs $2"
}

# The name of a release, which also becomes that of a folder.
check_release() {
    case ${1:-} in
        bookworm | trixie | forky | sid) release=$1 ;;
        *)
            echo "usage: $(basename "$0") bookworm|trixie|forky|sid $2" >&2
            exit 2
            ;;
    esac
    root=$roots/$release
}
