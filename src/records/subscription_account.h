#pragma once

#include <optional>
#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// What a service subscription is for.
enum class SubscriptionCategory : std::uint8_t {
  internet,
  telephone,
  charts,
  weather,
  tracking,
  software,
  entertainment,
  insurance,
  membership,
  other
};

template <>
struct EnumTexts<SubscriptionCategory> {
  static constexpr std::array<EnumText, 10> table{{{"internet", "Internet & satellite"},
                                                   {"telephone", "Telephone"},
                                                   {"charts", "Charts & navigation"},
                                                   {"weather", "Weather"},
                                                   {"tracking", "Tracking & security"},
                                                   {"software", "Software"},
                                                   {"entertainment", "TV & entertainment"},
                                                   {"insurance", "Insurance"},
                                                   {"membership", "Membership"},
                                                   {"other", "Other"}}};
};

enum class BillingCycle : std::uint8_t { monthly, quarterly, semiannual, annual, payAsYouGo, oneTime };

template <>
struct EnumTexts<BillingCycle> {
  static constexpr std::array<EnumText, 6> table{{{"monthly", "Monthly"},
                                                  {"quarterly", "Quarterly"},
                                                  {"semiannual", "Every six months"},
                                                  {"annual", "Annual"},
                                                  {"payAsYouGo", "Pay as you go"},
                                                  {"oneTime", "One-time"}}};
};

/// A service that is paid for and signed in to, with what is needed to get back into it. It never holds the password.
struct SubscriptionAccount {
  Uuid id;
  std::optional<Uuid> vesselID;  ///< absent for a service of the whole fleet
  std::string serviceName;
  std::string provider;
  Choice<SubscriptionCategory> category = SubscriptionCategory::other;
  std::string username;
  std::string accountNumber;
  std::string loginURL;
  std::string recoveryEmail;
  std::string mfaNotes;               ///< who holds the second factor
  std::optional<double> monthlyCost;  ///< per month in `currency`, whatever the billing cycle
  std::string currency;               ///< ISO 4217 code
  Choice<BillingCycle> billingCycle;
  std::optional<Timestamp> renewalDate;
  std::string contactPhone;
  std::string notes;
  bool isArchived = false;

  friend bool operator==(const SubscriptionAccount&, const SubscriptionAccount&) = default;
};
BOOST_DESCRIBE_STRUCT(SubscriptionAccount, (),
                      (id, vesselID, serviceName, provider, category, username, accountNumber, loginURL, recoveryEmail,
                       mfaNotes, monthlyCost, currency, billingCycle, renewalDate, contactPhone, notes, isArchived))
template <>
struct JsonForm<SubscriptionAccount> {
  static constexpr bool vesselOptional = true;
};
THALVORN_JSON_RECORD(SubscriptionAccount);

template <>
struct RecordFacts<SubscriptionAccount> {
  static constexpr std::array facts{
      FieldFacts{.name = "vesselID", .label = "Vessel"},
      FieldFacts{.name = "serviceName", .label = "Service", .required = true},
      FieldFacts{.name = "provider", .label = "Provider"},
      FieldFacts{.name = "category", .label = "Category"},
      FieldFacts{.name = "username", .label = "User name", .sensitive = true},
      FieldFacts{.name = "accountNumber", .label = "Account number", .sensitive = true},
      FieldFacts{.name = "loginURL", .label = "Sign-in page", .entry = FieldEntry::url},
      FieldFacts{.name = "recoveryEmail", .label = "Recovery e-mail", .sensitive = true, .entry = FieldEntry::email},
      FieldFacts{.name = "mfaNotes",
                 .label = "Two-step sign-in",
                 .placeholder = "e.g. code goes to the captain’s phone",
                 .sensitive = true,
                 .entry = FieldEntry::multiline},
      FieldFacts{.name = "monthlyCost", .label = "Cost per month", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "currency", .label = "Currency", .placeholder = "USD"},
      FieldFacts{.name = "billingCycle", .label = "Billed"},
      FieldFacts{.name = "renewalDate", .label = "Renews", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "contactPhone", .label = "Support telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "isArchived", .label = "Archived"}};
};
static_assert(factsNameFields<SubscriptionAccount>());

}  // namespace thalvorn
