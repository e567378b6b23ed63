"""Prints where this Python looks for packages below a prefix, such as "lib/python3.11/dist-packages"."""

import sysconfig

directory = sysconfig.get_path("platlib", vars={"base": "", "platbase": ""})
# Debian's scheme for what it did not package itself puts "local" into the path, as its prefix is /usr.
print(directory.removeprefix("/local").removeprefix("/"))
