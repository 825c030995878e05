#!/bin/sh
# Fails when a source file includes what its folder's layer may not use, or when the folders'
# includes go round in a circle:
#   engine folders (core, work, formats, dsp, devices, project, lists, cd, platform/engine, platform/audio) never
#   include Qt, ui/, app/, cli/ or platform/qtcore/; core/ builds on the standard library only and work/ on core/;
#   formats/ and dsp/ never each other; formats/ may start other programs through platform/engine/ but uses no
#   other platform code; devices/ never platform/ (backends register themselves) nor formats/, and reaches the
#   peak limiter through core/; project/ builds on core/ and work/; lists/ never reaches a device, a disc or
#   the platform; cd/ (the compact disc) only core/, work/ and platform/engine/.
# A folder here is a top-level folder, or one of platform/'s parts; a new top-level folder of sources must be
# given its layer below before it passes.
# usage: tools/check-layers.sh [SOURCE_ROOT]
root=${1:-$(dirname "$0")/..}
cd "$root" || exit 2
status=0

engine="core work formats dsp devices project lists cd platform/engine platform/audio"
faces="ui app cli platform/qtcore"
# Folders that hold no layer: tests, measurements, fuzz targets and the tools around the build.
outside="tests bench fuzz tools docs packaging build"

include_pattern='^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]'

forbid() { # folder, extended pattern of forbidden includes, what the rule is
    dir=$1
    [ -d "$dir" ] || return 0
    found=$(grep -rnE "$include_pattern($2)" "$dir" --include='*.h' --include='*.cpp')
    if [ -n "$found" ]; then
        echo "$3:"
        echo "$found"
        status=1
    fi
}

for dir in $engine; do
    forbid "$dir" 'Q[A-Za-z]|qt|ui/|app/|cli/|platform/qtcore/' "$dir/ is engine code: no Qt and nothing of the faces"
done
forbid core 'work/|formats/|dsp/|devices/|project/|lists/|cd/|platform/' "core/ builds on the standard library only"
forbid work 'formats/|dsp/|devices/|project/|lists/|cd/|platform/' "work/ builds on the standard library and core/ only"
forbid formats 'dsp/|devices/|project/|lists/|cd/|platform/audio/|platform/qtcore/' "formats/ never includes dsp/, devices/, project/, lists/, cd/ or platform/ beyond its engine part"
forbid dsp 'formats/|devices/|project/|lists/|cd/|platform/' "dsp/ never includes formats/, devices/, project/, lists/, cd/ or platform/"
forbid devices 'platform/|formats/|project/|lists/|cd/' "devices/ never includes platform/ (a backend registers itself), formats/, project/, lists/ or cd/"
forbid devices 'dsp/LSRCPeakLimit' "devices/ reaches the peak limiter through core/LSoundLimiter"
forbid project 'formats/|dsp/|devices/|lists/|cd/|platform/' "project/ builds on core/ and work/ only"
forbid lists 'devices/|cd/|platform/' "lists/ never includes devices/, cd/ or platform/"
forbid cd 'formats/|dsp/|devices/|project/|lists/' "cd/ builds on core/, work/ and platform/engine/ only"

# Every top-level folder of sources has a layer.
for dir in */; do
    dir=${dir%/}
    case " $engine $faces $outside platform " in *" $dir "*) continue ;; esac
    if [ -n "$(find "$dir" \( -name '*.cpp' -o -name '*.h' \) -print -quit)" ]; then
        echo "$dir/ holds sources but has no layer in tools/check-layers.sh"
        status=1
    fi
done

# The folder graph: an edge for every include of one folder's file by another folder's file.
edges=$(for dir in $engine $faces; do
    [ -d "$dir" ] || continue
    grep -rhoE "$include_pattern[a-z]+/([a-z]+/)?" "$dir" --include='*.h' --include='*.cpp' |
        sed -E 's/.*[<"]//; s#^(platform/[a-z]+)/.*#\1#; s#^([a-z]+)/.*#\1#' | sort -u |
        while read -r to; do
            case " $engine $faces " in *" $to "*) [ "$to" != "$dir" ] && echo "$dir $to" ;; esac
        done
done)
cycle=$(echo "$edges" | awk '
    NF == 2 { out[$1] = out[$1] " " $2; nodes[$1] = 1; nodes[$2] = 1 }
    function visit(n,    i, k, next_nodes) {
        state[n] = 1; path[++depth] = n
        k = split(out[n], next_nodes, " ")
        for (i = 1; i <= k; i++) {
            if (state[next_nodes[i]] == 1) { report(next_nodes[i]); return 1 }
            if (state[next_nodes[i]] == 0 && visit(next_nodes[i])) return 1
        }
        state[n] = 2; depth--
        return 0
    }
    function report(start,    i, s, on) {
        for (i = 1; i <= depth; i++) { if (path[i] == start) on = 1; if (on) s = s path[i] " -> " }
        print s start
    }
    END { for (n in nodes) if (state[n] == 0 && visit(n)) exit }')
if [ -n "$cycle" ]; then
    echo "the folders include each other in a circle: $cycle"
    status=1
fi
exit $status
