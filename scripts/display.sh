# Sourced: start_display makes a display of the script's own, which ends with the script. Each device of
# a test process keeps its desktop's clients until that process ends, so that many must fit when a test
# is repeated.
start_display() {
  local number_file number
  number_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -maxclients 2048 3>"$number_file" >/dev/null 2>&1 &
  display_pid=$!
  trap 'kill "$display_pid" 2>/dev/null || true' EXIT
  for _ in $(seq 100); do
    number=$(cat "$number_file")
    [ -z "$number" ] || break
    sleep 0.1
  done
  rm -f "$number_file"
  [ -n "$number" ] || { echo "no display could be started" >&2; return 1; }
  export DISPLAY=:$number
}
