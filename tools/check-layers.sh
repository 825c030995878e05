#!/bin/sh
# Fails when a source file includes what its folder's layer may not use:
#   engine folders (core, work, formats, dsp, devices, project, lists, cd, platform/engine, platform/audio) never
#   include Qt, ui/, app/, cli/ or platform/qtcore/; core/ and work/ only each other; formats/ and
#   dsp/ never each other; formats/ may start other programs through platform/engine/ but uses no
#   other platform code; devices/ never platform/ (backends register themselves) nor formats/;
#   cd/ (the compact disc) only core/, work/ and platform/engine/.
# usage: tools/check-layers.sh [SOURCE_ROOT]
root=${1:-$(dirname "$0")/..}
cd "$root" || exit 2
status=0

forbid() { # folder, extended pattern of forbidden includes, what the rule is
    dir=$1
    [ -d "$dir" ] || return 0
    found=$(grep -rnE "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($2)" "$dir" --include='*.h' --include='*.cpp')
    if [ -n "$found" ]; then
        echo "$3:"
        echo "$found"
        status=1
    fi
}

for dir in core work formats dsp devices project lists cd platform/engine platform/audio; do
    forbid "$dir" 'Q[A-Za-z]|qt|ui/|app/|cli/|platform/qtcore/' "$dir/ is engine code: no Qt and nothing of the faces"
done
forbid core 'formats/|dsp/|devices/|platform/' "core/ builds on the standard library and work/ only"
forbid work 'formats/|dsp/|devices/|platform/' "work/ builds on the standard library and core/ only"
forbid formats 'dsp/|devices/|platform/audio/|platform/qtcore/' "formats/ never includes dsp/, devices/ or platform/ beyond its engine part"
forbid dsp 'formats/|devices/|platform/' "dsp/ never includes formats/, devices/ or platform/"
forbid cd 'formats/|dsp/|devices/|project/|lists/' "cd/ builds on core/, work/ and platform/engine/ only"
forbid devices 'platform/|formats/' "devices/ never includes platform/ (a backend registers itself) nor formats/"
exit $status
