#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/database.h"

namespace thalvorn::devserver {

struct ColumnFacts {
  std::string type;
  std::optional<std::string> defaultValue;
};

struct TableFacts {
  std::map<std::string, ColumnFacts, std::less<>> columns;
  std::vector<std::string> primaryKey;
};

struct FunctionFacts {
  struct Argument {
    std::string name;
    std::string type;
    bool optional = false;
  };
  std::vector<Argument> arguments;
  bool returnsSet = false;
  bool returnsScalar = false;
  bool returnsVoid = false;
};

/// What the table interface knows of the schema `public`, and the settings of the roles it acts for.
struct Schema {
  std::map<std::string, TableFacts, std::less<>> tables;
  std::multimap<std::string, FunctionFacts, std::less<>> functions;
  std::map<std::string, std::vector<std::pair<std::string, std::string>>, std::less<>> roleSettings;

  const TableFacts* table(std::string_view name) const;
};

/// The schema as last read. It is read when first asked for, and again on demand. Safe to use from every thread.
class SchemaCache {
 public:
  explicit SchemaCache(Pool& pool) : pool_(pool) {}

  Answer<std::shared_ptr<const Schema>> current();
  Answer<std::shared_ptr<const Schema>> reread();

 private:
  Pool& pool_;
  std::mutex mutex_;
  std::shared_ptr<const Schema> schema_;
};

}  // namespace thalvorn::devserver
