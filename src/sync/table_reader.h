#pragma once

#include <QByteArray>
#include <functional>
#include <string_view>

#include "backend/supabase_client.h"
#include "sync/run_token.h"

namespace thalvorn {

/// What a download came to.
struct Download {
  std::size_t rows = 0;
  /// Every row that the filters allow was seen, by a count that did not change meanwhile: only then is a record that is
  /// not among them gone.
  bool complete = false;
};

/// Takes a page as it comes and gives how many rows it held that no page before it had; negative when the page could
/// not be read.
using TakePage = std::function<QCoro::Task<int>(QByteArray rows)>;

/// Reads every row of `query` in the table's own `order`. What does not fit into the first reply (servers cut silently)
/// is read in pages of that reply's length, ordered by `id` last, six at a time. Pages are handed over as they come; a
/// failure leaves those before it taken.
SBTask<Download> readTable(SupabaseClient* client, TableQuery query, std::string_view order, TakePage take,
                           RunToken token);

}  // namespace thalvorn
