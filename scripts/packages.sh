# To be sourced. ensure_packages installs what is missing of the given Debian packages and is silent when all is there.

kBuildPackages=(g++ make cmake ninja-build ccache libxml2-dev libcli11-dev libfmt-dev
  libicu-dev zlib1g-dev liblzma-dev)  # The last three: what a program needs that has libxml2 in it.
kWindowPackages=(qt6-base-dev qt6-svg-dev fonts-dejavu-core)
kTestPackages=("${kWindowPackages[@]}" libgtest-dev libgmock-dev python3 clang-format clang-tidy locales
  dpkg-dev file desktop-file-utils appstream  # The package and what is in it.
  xvfb xauth jwm)  # Windows on a real display.

package_is_there() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

install_packages() {
  # A list of packages that is out of date names versions that are gone, so it is fetched first.
  as_root apt-get update -q &&
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "$@"
}

ensure_packages() {
  local missing=() package
  if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system: have these installed (or what they are called here): $*" >&2
    return 0
  fi
  for package in "$@"; do
    package_is_there "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  echo "Installing with apt-get: ${missing[*]}" >&2
  if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
    echo "That takes root or sudo. As root: apt-get update && apt-get install ${missing[*]}" >&2
    return 1
  fi
  install_packages "${missing[@]}" </dev/null >&2 && return 0
  echo "The packages could not be installed: ${missing[*]}" >&2
  return 1
}
