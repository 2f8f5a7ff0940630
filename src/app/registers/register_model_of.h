#pragma once

#include "app/registers/register_model.h"
#include "base/search_index.h"

namespace thalvorn::app {

/// The list of one register's records; all that it shows stands in `Register<T>`.
template <HasRegister T>
class RegisterModelOf : public RegisterModel {
 public:
  RegisterModelOf(AppViewModel& store, PreferenceStore& preferences, const Format& format, RegisterScope scope,
                  QString key, QObject* parent = nullptr)
      : RegisterModel(store, preferences, format, scope, std::move(key), parent), records_(store.collection<T>()) {
    follow(records_.events());
  }

  const T& at(std::uint32_t position) const { return records_[position]; }
  /// Copies of the records at these positions.
  std::vector<T> copies(const std::vector<std::uint32_t>& positions) const {
    std::vector<T> made;
    made.reserve(positions.size());
    for (const std::uint32_t position : positions) made.push_back(records_[position]);
    return made;
  }

 protected:
  std::size_t recordCount() const override { return records_.size(); }
  Uuid idAt(std::uint32_t position) const override { return records_[position].id; }
  std::optional<std::uint32_t> positionOf(const Uuid& id) const override {
    const auto position = records_.indexOf(id);
    return position ? std::optional(static_cast<std::uint32_t>(*position)) : std::nullopt;
  }
  Uuid vesselAt(std::uint32_t position) const override { return vesselOf(records_[position]).value_or(Uuid()); }
  bool ofVessels() const override {
    return requires(const T& record) { record.vesselID; };
  }
  RegisterValue valueAt(std::uint32_t position, std::size_t column) const override {
    return Register<T>::columns[column].value(records_[position]);
  }
  const std::vector<ColumnFacts>& columns() const override {
    static const std::vector<ColumnFacts> facts(Register<T>::columns.begin(), Register<T>::columns.end());
    return facts;
  }
  std::vector<std::uint32_t> ordered(const RegisterQuery& query) const override {
    std::vector<std::uint32_t> positions(records_.size());
    for (std::uint32_t i = 0; i < positions.size(); ++i) positions[i] = i;
    sortRecords<T>(records_.records(), positions, query);
    return positions;
  }
  std::vector<std::uint32_t> passing(const std::vector<std::uint32_t>& ordered, const RegisterQuery& query) override {
    RegisterFilter<T> filter(query);
    const SearchWords words(query.search);
    std::vector<bool> found;
    if (!words.empty()) {
      found.resize(records_.size());
      fillIndex();
      for (const std::uint32_t position : index_.find(words)) found[position] = true;
    }
    std::vector<std::uint32_t> rows;
    for (const std::uint32_t position : ordered)
      if ((found.empty() || found[position]) && filter.passes(records_[position])) rows.push_back(position);
    return rows;
  }

  void forgetRecord(std::uint32_t position) override {
    if (position < index_.size()) index_.replace(position, searched(position));
  }
  void forgetRecords() override { index_.clear(); }

 private:
  std::string_view searched(std::uint32_t position) {
    texts_.clear();
    appendSearched(texts_, records_[position]);
    return texts_;
  }
  void fillIndex() {
    while (index_.size() < records_.size()) index_.append(searched(static_cast<std::uint32_t>(index_.size())));
  }

  const Collection<T>& records_;
  SearchIndex index_;
  std::string texts_;
};

}  // namespace thalvorn::app
