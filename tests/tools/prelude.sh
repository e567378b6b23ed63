# What the commands of the transcripts may use.

# Runs a command held to the permissions of files, which the administrator is not as a rule.
as_user()
{
    local rights=-dac_override,-dac_read_search
    [ "$UID" != 0 ] || set -- setpriv --inh-caps=$rights --bounding-set=$rights "$@"
    "$@"
}
