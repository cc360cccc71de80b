# To be sourced by scripts that need the local development server. They set `build`, the build
# folder, and `work`, a folder for the server's announcement, and call stop_server when they end.

server=

# start_server FOLDER [OPTION...]: serves the folder; sets `url` and `authority`.
start_server() {
  : >"$work/announcement"
  "$build/tools/devserver/devserver" "$@" >"$work/announcement" &
  server=$!
  until grep -q '^authority=' "$work/announcement"; do
    kill -0 "$server" # fails, and ends the script, when the server has given up
    sleep 0.05
  done
  url=$(sed -n 's/^url=//p' "$work/announcement")
  authority=$(sed -n 's/^authority=//p' "$work/announcement")
}

stop_server() {
  [ -n "$server" ] || return 0
  kill "$server"
  wait "$server" || true
  server=
}
