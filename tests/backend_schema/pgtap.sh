#!/usr/bin/env bash
# Runs supabase/tests with pg_prove: everything as in a new project, and once more what must hold where tables start open.
#   pgtap.sh CHECKOUT
# shellcheck source=tests/backend_schema/cluster.sh
. "$(dirname "$0")/cluster.sh" "$1"

start_cluster
pg_prove --ext .sql --recurse "$checkout/supabase/tests"

start_cluster --old-grants
pg_prove "$checkout/supabase/tests/nothing_open_test.sql"
