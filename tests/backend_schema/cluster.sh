# shellcheck shell=bash
# Sourced by the tests beside it: `start_cluster [OPTION…]` gives them a database of their own, gone when the script ends.
set -euo pipefail
checkout=$1
scratch=$(mktemp -d "${TMPDIR:-/tmp}/thalvorn-schema.XXXXXX")
chmod 711 "$scratch" # the server's user passes through
clusters=()
stop_clusters() {
  local cluster
  for cluster in "${clusters[@]}"; do "$checkout/scripts/database" stop "$cluster"; done
  rm -rf "$scratch"
}
trap stop_clusters EXIT

# Sets what psql and pg_prove read: they act as the plain owner of the schema.
start_cluster() {
  local cluster=$scratch/${#clusters[@]} connection
  clusters+=("$cluster")
  connection=$("$checkout/scripts/database" start "$cluster" "$@")
  PGPASSWORD=${connection#*//postgres:} PGPORT=${connection#*\"port\":}
  PGPASSWORD=${PGPASSWORD%%@*} PGPORT=${PGPORT%%,*}
  export PGPASSWORD PGPORT PGHOST=127.0.0.1 PGUSER=postgres PGDATABASE=postgres
}
