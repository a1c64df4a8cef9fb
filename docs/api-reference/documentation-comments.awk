# Shows a header of ours to doxygen: turns plain comments into documentation comments, line by line, so
# that line numbers stay true.
#
#   a comment above a declaration        documents it
#   a comment behind a declaration       documents it
#   the comment at the top of a header   documents the header, and its first class unless that has a
#                                        comment of its own
#   "= default" and "= delete"           need none, the language tells what they do
#   an enumerator without a comment      gets a command that doxygen refuses: it does not check them
#
# Text in comments is text: nothing in it is a command or markup, but for `code`, lists and, indented by
# four, examples.

function plain(text,    parts, count, i, result) {
    if (text ~ /^    /) {
        return text
    }
    count = split(text, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1) {
            gsub(/[\\<>@#%&]/, "\\\\&", parts[i])
        }
        result = result (i > 1 ? "`" : "") parts[i]
    }
    return result
}

function is_first_class(line) {
    return !class_was_seen && line ~ /^(class|struct) [A-Za-z]+( .*)?$/
}

BEGIN {
    at_top = 1
    header = ARGV[1]
    sub(/.*\//, "", header)
}

# In a block comment.
in_block {
    in_block = ($0 !~ /\*\/ *$/)
    if (!in_block && at_top) {
        sub(/\*\/ *$/, "\\file */")
        at_top = 0
    } else {
        $0 = plain($0)
    }
    print
    was_comment = 1
    next
}

/^ *\/\*/ {
    in_block = ($0 !~ /\*\/ *$/)
    text = $0
    sub(/^ *\/\*/, "", text)
    indentation = substr($0, 1, index($0, "/*") - 1)
    print indentation "/**" plain(text)
    was_comment = 1
    next
}

/^ *\/\/( |$)/ {
    column = index($0, "//")
    mark = (column == trailing_column) ? "///<" : "///"
    print substr($0, 1, column - 1) mark plain(substr($0, column + 2))
    was_comment = 1
    next
}

# Behind the comment at the top.
/^#pragma once$/ && at_top {
    print "/// \\file"
    at_top = 0
    was_comment = 0
    next
}

{ trailing_column = 0 }

/[^ ].*  \/\/ / && !/^ *}/ {
    trailing_column = index($0, "  // ") + 2
    $0 = substr($0, 1, trailing_column - 1) "///<" plain(substr($0, trailing_column + 2))
}

/[^ ].* \/\* .*\*\/$/ {
    start = index($0, "/* ")
    $0 = substr($0, 1, start - 1) "/**<" plain(substr($0, start + 2))
}

/^ *}/ { in_enumeration = 0 }

in_enumeration && !was_comment && !trailing_column { $0 = $0 "  ///< \\undocumented_enumerator" }

/^ *enum .*{/ {
    in_enumeration = !/}/
    if (!in_enumeration) {
        $0 = $0 "  ///< \\undocumented_enumerator"
    }
}

/= (default|delete);$/ { $0 = $0 "  ///< As the language has it." }

# The line of a template may belong to the class behind it.
/^template </ && !was_comment {
    template_line = $0
    getline
    if (is_first_class($0)) {
        template_line = "/** \\copydoc " header " */ " template_line
        class_was_seen = 1
    }
    print template_line
}

is_first_class($0) {
    if (!was_comment) {
        $0 = "/** \\copydoc " header " */ " $0
    }
    class_was_seen = 1
}

{
    print
    was_comment = was_comment && /^template </
}
