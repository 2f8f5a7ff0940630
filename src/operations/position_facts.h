#pragma once

#include "base/fields.h"

/// How a position is entered, in every record that has one. Decimal degrees, north and east positive.
namespace thalvorn {

inline constexpr FieldFacts kLatitudeFacts{.name = "latitude",
                                           .label = "Latitude",
                                           .placeholder = "26.0089 or 26°00'32\"N",
                                           .decimals = 6,
                                           .minimum = -90,
                                           .maximum = 90,
                                           .required = true};
inline constexpr FieldFacts kLongitudeFacts{.name = "longitude",
                                            .label = "Longitude",
                                            .placeholder = "-80.1234 or 80°07'24\"W",
                                            .decimals = 6,
                                            .minimum = -180,
                                            .maximum = 180,
                                            .required = true};

}  // namespace thalvorn
