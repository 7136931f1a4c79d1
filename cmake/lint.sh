#!/bin/bash
# ./dev lint: format, the arrows of the picture, clang-tidy. --fix formats in place; --all lets clang-tidy look at every
# file rather than at those that differ from main.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folders=(Core Platform Cli App Tests Bench)
fix="" all=""
for word in "$@"; do
    case $word in
        --fix) fix=1 ;;
        --all) all=1 ;;
        *) echo "lint knows --fix and --all, not $word" >&2; exit 2 ;;
    esac
done

# The version matters to the format: 16 where the system offers a choice.
tool() { command -v "$1-16" || command -v "$1"; }
sources() { find "${folders[@]}" \( -name "*.cpp" -o -name "*.h" \) -print0 2>/dev/null || true; }
changed() {
    local base
    base=$(git merge-base HEAD main 2>/dev/null || git merge-base HEAD origin/main)
    { git diff --name-only --diff-filter=d -z "$base"; git ls-files -oz --exclude-standard; } |
        grep -zE '^(Core|Platform/Linux|Cli|App|Tests|Bench)/.*\.cpp$' || true
}

status=0
if [[ $fix ]]; then
    sources | xargs -0 "$(tool clang-format)" -i
else
    unformatted=$(sources | xargs -0 "$(tool clang-format)" --dry-run 2>&1 | sed -n 's/:[0-9:]* warning.*//p' | sort -u)
    if [[ $unformatted ]]; then
        printf 'Not formatted as .clang-format tells (./dev lint --fix does it):\n%s\n' "$unformatted" >&2
        status=1
    fi
fi
cmake/check-arrows.sh || status=1
{ if [[ $all || ${CI:-} ]]; then sources | grep -z '\.cpp$'; else changed; fi; } |
    { grep -zvE '^(Platform/MacOS|Tests/Fuzz|Bench)/' || true; } |
    xargs -0 -r -n 1 -P "$(nproc)" "$(tool clang-tidy)" -p build/release --quiet 2> >(grep -v 'warnings generated' >&2) ||
    status=1
exit $status
