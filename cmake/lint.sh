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
# qmlformat of Qt 6.4 drops the pragma's value and doubles a space.
formatted() {
    qmltool qmlformat "$1" 2>/dev/null |
        sed -e '1s/^pragma ComponentBehavior$/pragma ComponentBehavior: Bound\n/' -e 's/^\( *Behavior on [A-Za-z.]*\)  {/\1 {/'
}
qmltool() { PATH=/usr/lib/qt6/bin:/usr/lib/qt/bin:$PATH "$@"; }
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
for file in App/Qml/*.qml Tests/Quick/*.qml; do
    formatted "$file" | cmp -s - "$file" && continue
    if [[ $fix ]]; then
        text=$(formatted "$file") && printf '%s\n' "$text" >"$file"
    else
        echo "Not formatted as qmlformat does: $file" >&2
        status=1
    fi
done
# What QML knows of the types in C++ is generated. In Qt 6.4 a Loader takes no bound component, so what it loads reaches
# the names around it unqualified.
cmake --build build/release --target ravik-views_qmltyperegistration >/dev/null
said=$(qmltool qmllint --unqualified disable -I build/release/qml App/Qml/*.qml 2>&1 || true)
if [[ $said ]]; then
    printf '%s\n' "$said" >&2
    status=1
fi
cmake/check-arrows.sh || status=1
{ if [[ $all || ${CI:-} ]]; then sources | grep -z '\.cpp$'; else changed; fi; } |
    { grep -zvE '^(Platform/MacOS|Tests/Fuzz|Bench)/' || true; } |
    xargs -0 -r -n 1 -P "$(nproc)" "$(tool clang-tidy)" -p build/release --quiet 2> >(grep -v 'warnings generated' >&2) ||
    status=1
exit $status
