# Readies a page for Doxygen. It finds other pages by their path from the root alone, so that is what links get; one to
# anything else is left as its words, of which Doxygen knows those that name headers. And of code it wants two backticks
# on each side, because it takes a ` that a ' follows for a quotation.

# The path from the root of what the page calls `target`, without the heading, whose name is another one in Doxygen.
function from_root(target,    path)
{
    path = FILENAME
    sub(/[^\/]*$/, "", path)
    path = path target
    sub(/#.*/, "", path)
    while (sub(/[^\/]+\/\.\.\//, "", path)) {}
    return substr(path, length(ENVIRON["PWD"]) + 2)
}

function mended(link,    words, target)
{
    words = substr(link, 2, index(link, "](") - 2)
    target = substr(link, length(words) + 4)
    sub(/\)$/, "", target)
    if (target ~ /^https:/)
        return link
    return target ~ /\.md(#|$)/ ? "[" words "](" from_root(target) ")" : words
}

/^```/ { in_block = !in_block }

/^#/ && !in_block { gsub(/`/, "") } # it shows the tags of code in headings

!in_block && !/``/ { gsub(/`[^`]+`/, "`&`") }

{
    line = ""
    while (!in_block && match($0, /\[[^][]*\]\([^)]*\)/))
    {
        line = line substr($0, 1, RSTART - 1) mended(substr($0, RSTART, RLENGTH))
        $0 = substr($0, RSTART + RLENGTH)
    }
    print line $0
}
