#pragma once

#include <string>

#include "base/bytes.h"
#include "base/describe.h"
#include "base/enums.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Gives every field of a record, and of what lies in it, a value of its own.
class Filler {
 public:
  /// Fillers of one space give the same identities.
  explicit Filler(const Uuid& space = {}) : space_(space) {}

  template <class T>
  void fill(T& value) {
    ++count_;
    if constexpr (std::is_same_v<T, std::string>) {
      value = "text \"" + std::to_string(count_) + "\" é";
    } else if constexpr (std::is_same_v<T, bool>) {
      value = !value;
    } else if constexpr (std::is_floating_point_v<T>) {
      value = count_ + 0.25;
    } else if constexpr (std::is_integral_v<T>) {
      value = 9'007'199'254'740'993 - count_;
    } else if constexpr (std::is_same_v<T, Uuid>) {
      value = Uuid::named(space_, std::to_string(count_));
    } else if constexpr (std::is_same_v<T, Timestamp>) {
      value = Timestamp(std::chrono::seconds(1'700'000'000 + count_));
    } else if constexpr (std::is_same_v<T, Bytes>) {
      value.data = {1, 2, static_cast<std::uint8_t>(count_)};
    } else if constexpr (isChoice<T>) {
      value = T::fromRaw("newer case " + std::to_string(count_));
    } else if constexpr (requires { value.emplace_back(); }) {
      fill(value.emplace_back());
      fill(value.emplace_back());
    } else if constexpr (requires {
                           value.emplace();
                           value.has_value();
                         }) {
      fill(value.emplace());
    } else if constexpr (requires { typename T::mapped_type; }) {
      fill(value[T::key_type::fromRaw("newer module")]);
    } else {
      forEachField(value, [this](std::string_view, auto& field) { this->fill(field); });
    }
  }

 private:
  Uuid space_;
  int count_ = 0;
};

}  // namespace thalvorn
