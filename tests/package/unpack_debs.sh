#!/usr/bin/env bash
# Unpacks the packages of a folder into an empty root and looks for what only a package can have wrong.
#
# usage: unpack_debs.sh FOLDER ROOT
set -euo pipefail
folder=$1
root=$2

fail()
{
    echo "$*" >&2
    exit 1
}

rm -rf "$root"
mkdir -p "$root"
for package in libvumo0.1 libvumo-dev vumo; do
    file=$(echo "$folder/${package}"_*.deb)
    dpkg-deb --extract "$file" "$root"
    depends=$(dpkg-deb --field "$file" Depends)
    [[ $package = libvumo0.1 || $depends = *"libvumo0.1 (= "* ]] || fail "$package depends on $depends"
    [[ $package = libvumo-dev || $depends = *"libc6 (>= "* ]] || fail "$package depends on $depends"
done

mapfile -t programs < <(find "$root/usr" -name vumo -type f -perm -u+x -o -name 'libvumo.so.*.*.*')
paths=$(readelf -d "${programs[@]}" | sed -n 's/.*R.*PATH.*\[\(.*\)\]/\1/p')
[[ $paths = "\$ORIGIN/"* && $paths != *:* ]] || fail "The run paths lead elsewhere: $paths"

# What belongs to the tool comes with it, and what belongs to programs with the headers.
share=$root/usr/share
for file in "$share/man/man1/vumo.1" "$share/bash-completion/completions/vumo" "$share/doc/vumo/docs/tutorial.md" \
    "$share/doc/vumo/examples/write_scene.cpp"; do
    [ -s "$file" ] || fail "There is no $file"
done

# Nothing of this environment helps the tool to its library.
weight=$(env -i "$root/usr/bin/vumo" get "$share/doc/vumo/examples/scenes/example.ob" Head face weights 1 Weight)
[ "$weight" = 0.25 ] || fail "It reads $weight"
env -i LD_TRACE_LOADED_OBJECTS=1 "$root/usr/bin/vumo" | grep -qF "$(realpath "$root")/usr/" || fail "It finds no library"
