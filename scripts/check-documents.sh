#!/usr/bin/env bash
# Checks what the documents claim: every path that a Markdown file names exists, every relative link has
# a target, README.md's C and C++ stand in examples/ and its tables have every option of CMake and the
# oldest C library that the program for a device works with, a document explains every command of
# scripts/, and each of these prints its leading comment for --help.
#
# Usage: scripts/check-documents.sh
#
# A path is checked when it begins with an entry of the tree or of the document's folder, and a file
# name alone when it has the extension of a source or a document. In both, * stands for anything, and
# so does a part in capitals, as in fuzz/corpus/TARGET. The change log may name what is gone.
source "$(dirname "$(readlink -f "$0")")/common.sh"
show_help_and_exit_on_demand "$@"

status=0
complain() {
    printf '%s\n' "$*" >&2
    status=1
}

files=$(git ls-files --cached --others --exclude-standard)
checked=0

# Succeeds when a file or folder below the folder $1 matches the path $2.
exists_below() {
    compgen -G "$1/$(sed -E 's#/[A-Z_]+(/|$)#/*\1#g' <<< "${2%/}")" > /dev/null
}

check_path() {
    local document=$1 path=$2 folder=.
    local first=${path%%/*}
    [ -e "$first" ] || folder=$(dirname "$document")
    if [ "$first" = build ] || [[ $first =~ ^\.*$ ]] || [ ! -e "$folder/$first" ]; then
        return
    fi
    checked=$((checked + 1))
    exists_below "$folder" "$path" || complain "$document names $path, which does not exist."
}

check_name() {
    local document=$1 name=$2
    if [[ $name =~ ^[A-Z_]+\.[a-z]+$ && $name != *.md ]] || git check-ignore -q "$name"; then
        return
    fi
    checked=$((checked + 1))
    local pattern=${name//./\\.}
    grep -qE "(^|/)${pattern//\*/[^/]*}\$" <<< "$files" || complain "$document names $name, which does not exist."
}

check_document() {
    local document=$1 word link
    while read -r word; do
        case $word in
            */*) check_path "$document" "$word" ;;
            *.md | *.sh | *.py | *.cmake | *.txt | *.json | *.h | *.cpp | *.awk | *.ini) check_name "$document" "$word" ;;
        esac
    done < <(grep -oE '[A-Za-z0-9_.*/-]+' "$document" | sed -E 's/[.-]+$//' | sort -u)

    while read -r link; do
        checked=$((checked + 1))
        [ -e "$(dirname "$document")/$link" ] || complain "$document links to $link, which does not exist."
    done < <(grep -oE '\]\([^)#]+' "$document" | sed 's/^](//' | grep -vE '^[a-z]+:' | sort -u)
}

# The blocks of C and C++ are excerpts, but for their indentation.
check_excerpts() {
    local excerpt examples
    examples=$(sed 's/^ *//' examples/*.c examples/*.cpp)
    while IFS= read -r -d $'\001' excerpt; do
        checked=$((checked + 1))
        [[ $examples == *"$excerpt"* ]] || complain "README.md shows code that is not in examples/: ${excerpt%%$'\n'*}"
    done < <(awk '/^```c(pp)?$/ { inside = 1; next }
        /^```$/ && inside { inside = 0; printf "\001"; next }
        inside { sub(/^ */, ""); print }' README.md)
}

check_options() {
    local option
    for option in $(git grep -hoE '(option|optional_component|set)\(VANTRIC_[A-Z_]+ ([A-Z0-9]+ CACHE|")' -- '*.cmake' '*CMakeLists.txt' | grep -oE 'VANTRIC_[A-Z_]+'); do
        checked=$((checked + 1))
        grep -qF "\`$option\`" README.md || complain "README.md does not explain the option $option."
    done
}

# The C library that the program for older devices needs is a budget of scripts/size-check.sh.
check_needed_c_library() {
    local version
    version=$(awk '/^armhf-release vantricprobe / { print $4 }' packaging/size-budget.txt)
    checked=$((checked + 1))
    grep -F 'build/armhf-release/' README.md | grep -qF "glibc $version or later" ||
        complain "README.md does not say that armhf-release needs glibc $version or later."
}

# Calls the command through a link in another folder, where a relative path to it would be wrong.
check_command() {
    local command=$1 promised printed
    grep -qE "^\| \`$command[ \`]" CONTRIBUTING.md || complain "CONTRIBUTING.md does not list $command."
    case $command in
        *.py) promised=$(sed -n '2s/^"""//p' "$command") ;;
        *) promised=$(awk 'NR == 1 { next } !/^#/ { exit } { sub(/^# ?/, ""); print }' "$command") ;;
    esac
    [ -n "$promised" ] || complain "$command does not begin with a comment that says what it does."
    ln -sf "$PWD/$command" "$links/command"
    printed=$(cd "$links" && timeout 20 ./command --help) || complain "$command --help fails."
    [[ $printed == *"$promised"* ]] || complain "$command --help does not print the comment at its top."
}

for document in $(grep -E '\.md$' <<< "$files" | grep -vx CHANGELOG.md); do
    check_document "$document"
done
check_excerpts
check_options
check_needed_c_library
links=$(mktemp -d)
trap 'rm -r "$links"' EXIT
commands=0
for command in $(grep -E '^(scripts/[^/]*|\.ci/run)$' <<< "$files"); do
    if [ -x "$command" ]; then
        check_command "$command"
        commands=$((commands + 1))
    fi
done
echo "Checked $checked paths and links and $commands commands."
exit "$status"
