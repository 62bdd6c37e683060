# CLI11 parses the command line; Debian: libcli11-dev.
find_package(CLI11 2.1 REQUIRED)
