# What the commands of the transcripts may use.

# Runs a command held to the permissions of files, which the administrator is not as a rule.
as_user()
{
    local rights=-dac_override,-dac_read_search
    [ "$UID" != 0 ] || set -- setpriv --inh-caps=$rights --bounding-set=$rights "$@"
    "$@"
}

# Writes the ASCII scene $1 with metadata statements that are read from standard input.
scene()
{
    { printf '%s\n' '//Ovri ASCII 2024 scene' 'select -ne :a;'; cat; echo "// End of $1"; } >"$1"
}

# Hides the numbers of a scan that are others each time.
masked()
{
    sed -E 's/"(device|inode|mtime|ctime)": [0-9]+/"\1": 0/g; s/"tail": "[0-9a-f]{16}"/"tail": "0"/'
}

# Prints the checksum of the metadata of the scene $1.
tail_of()
{
    vumo scan "$1" | sed -n '1s/.*"tail": "\([0-9a-f]*\)".*/\1/p'
}

# Leaves a scene half written with its undo record, as a save does that is interrupted.
interrupt()
{
    "${BASH_SOURCE[0]%/*}"/interrupt.py "$@"
}

# Puts another scene in the place of the scene $1 once that has a node $2, and lets nobody write to $3 until then.
replace_while_waiting()
{
    exec 3<"$3"
    flock 3
    until vumo ls --node "$2" "$1" 2>/dev/null | grep -q .; do :; done
    sleep 0.3 # until the tool waits for $3
    cp example.oa new.oa
    mv new.oa "$1"
}

# The commands that take files.
readers='ls show get check scan export content recover'
writers='set rm cp mv apply import'

# Runs each of the commands $1 on the scene $2, anew a copy of small.oa, or on those that "list" names, with the options
# after it, and tells the exit code on standard error.
each()
{
    local command
    local -A work=([get]='head face marks 12 text' [export]=head [set]='head face marks 12 text=chin' [rm]='head face'
        [cp]=head [mv]=head [apply]=script [import]=head.json)
    local -A need=([cp]=--as=neck [mv]=--as=neck)
    for command in $1; do
        local -a words=("$2" ${work[$command]})
        if [ "$command" = apply ]; then words=(script "$2"); fi
        if [ "$2" = list ]; then words=(--files-from list ${work[$command]}); else cp small.oa "./$2"; fi
        vumo "$command" ${need[$command]} "${@:3}" "${words[@]}"
        echo "$command ends with $?" >&2
    done
}
