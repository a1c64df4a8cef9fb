#!/usr/bin/env bash
# Checks what the documents claim: every path that a Markdown file of the tree names exists, every
# relative link leads somewhere, README.md names every command of scripts/, and each of those prints
# its leading comment for --help.
#
# Usage: scripts/check-documents.sh
#
# A path counts when it begins with an entry of the tree or of the document's folder, and a file's name
# alone when it ends as sources and documents do. In both, * stands for anything, and so does a part in
# capitals, as in fuzz/corpus/TARGET. The change log may name what is gone.
source "$(dirname "$0")/common.sh"
show_help_and_exit_on_demand "$@"

status=0
complain() {
    printf '%s\n' "$*" >&2
    status=1
}

files=$(git ls-files --cached --others --exclude-standard)
checked=0

# Whether a file or folder below the folder $1 matches the path $2.
exists_below() {
    compgen -G "$1/$(sed -E 's#/[A-Z_]+(/|$)#/*\1#g' <<< "$2")" > /dev/null
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

check_command() {
    local command=$1 promised printed
    grep -qF "\`$command" README.md || grep -qE "^    $command( |\$)" README.md ||
        complain "README.md does not tell what $command is for."
    case $command in
        *.py) promised=$(sed -n '2s/^"""//p' "$command") ;;
        *) promised=$(awk 'NR == 1 { next } !/^#/ { exit } { sub(/^# ?/, ""); print }' "$command") ;;
    esac
    [ -n "$promised" ] || complain "$command does not begin with a comment that tells what it does."
    printed=$(timeout 20 "$command" --help) || complain "$command --help fails."
    [[ $printed == *"$promised"* ]] || complain "$command --help does not print the comment at its top."
}

for document in $(grep -E '\.md$' <<< "$files" | grep -vx CHANGELOG.md); do
    check_document "$document"
done
commands=0
for command in $(grep -E '^scripts/[^/]*$' <<< "$files"); do
    if [ -x "$command" ]; then
        check_command "$command"
        commands=$((commands + 1))
    fi
done
echo "Checked $checked paths and links and $commands commands."
exit "$status"
