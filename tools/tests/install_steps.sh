# Sourced by the install tests: a fresh prefix under $work, and step, which
# runs a command into a log and shows the log only when the command fails.
rm -rf "$work"
mkdir -p "$work"
prefix=$work/prefix
step() { # step LOG COMMAND...
  log=$work/$1
  shift
  "$@" > "$log" 2>&1 || { cat "$log"; echo "failed: $*"; exit 1; }
}
