# The Debian packages that this tree needs, in one place. Source it; it only defines functions.
#
#   need_packages build|test|windows|bench|demo|lint...   installs what is missing; exits 3 with the command line where it may not

packages_of() {
    local build="cmake ninja-build g++ libgdal-dev libgeos-dev libcli11-dev nlohmann-json3-dev zlib1g-dev libdeflate-dev libjpeg62-turbo-dev qt6-base-dev"
    local tools="gdal-bin python3 python3-gdal imagemagick graphicsmagick libvips-tools"
    case $1 in
        build) echo "$build" ;;
        test) echo "$build $tools libgtest-dev libgmock-dev" ;;
        engines) echo "parallel slurmctld slurmd slurm-client munge" ;;
        bench) echo "$build $tools libbenchmark-dev" ;;
        demo) echo "$build imagemagick ca-certificates" ;;
        windows) echo "cmake ninja-build python3 python3-gdal googletest wine wine64 g++-mingw-w64-x86-64-posix mingw-w64-tools" ;;
        windows32) echo "cmake ninja-build wine64 g++-mingw-w64-i686-posix mingw-w64-tools" ;;
        lint) echo "$build clang-format clang-tidy" ;;
        *) echo "packages.sh: no such purpose: $1" >&2; return 2 ;;
    esac
}

is_installed() { dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed; }

need_packages() {
    local purpose package list missing=()
    for purpose in "$@"; do
        list=$(packages_of "$purpose") || exit 2
        for package in $list; do
            is_installed "$package" || missing+=("$package")
        done
    done
    if [ ${#missing[@]} -eq 0 ]; then return 0; fi
    if [ "$(id -u)" -ne 0 ]; then
        echo "Missing packages. Run this as root, then start again:" >&2
        echo "  apt-get update && apt-get install -y --no-install-recommends ${missing[*]}" >&2
        exit 3
    fi
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -q && apt-get install -q -y --no-install-recommends "${missing[@]}" || exit 3
}
