#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "compliance/crew_certification.h"
#include "compliance/crew_enums.h"

namespace thalvorn {

// A crew member is described in blocks, in the order of the JSON keys: one description holds at most 52 members. The
// blocks with enumerations are templates over how these are held: as `Choice` in the record itself, as plain text in
// the document that travels beside it.

template <class>
using PlainText = std::string;

struct CrewIdentity {
  Uuid id;
  Uuid vesselID;
  std::string firstName;
  std::string lastName;
  Choice<CrewRole> role = CrewRole::deckhand;
  std::string nationality;
  std::optional<Timestamp> dateOfBirth;
  std::string phone;
  std::string email;
  std::string emergencyName;
  std::string emergencyPhone;
  std::optional<Timestamp> embarkDate;
  std::optional<Timestamp> disembarkDate;
  bool isActive = true;
  std::string notes;
  std::vector<CrewCertification> certifications;
  friend bool operator==(const CrewIdentity&, const CrewIdentity&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewIdentity, (),
                      (id, vesselID, firstName, lastName, role, nationality, dateOfBirth, phone, email, emergencyName,
                       emergencyPhone, embarkDate, disembarkDate, isActive, notes, certifications))

template <template <class> class Held>
struct CrewDemographics {
  std::string placeOfBirth;
  Held<CrewMaritalStatus> maritalStatus;
  std::string gender;
  friend bool operator==(const CrewDemographics&, const CrewDemographics&) = default;
  BOOST_DESCRIBE_CLASS(CrewDemographics, (), (placeOfBirth, maritalStatus, gender), (), ())
};

struct CrewTravelDocuments {
  std::string passportCountry;
  std::string passportNumber;
  std::optional<Timestamp> passportExpiry;
  std::string driverLicenseNumber;
  std::string driverLicenseState;
  std::optional<Timestamp> driverLicenseExpiry;
  std::string seafarerIdNumber;
  std::optional<Timestamp> seafarerIdExpiry;
  friend bool operator==(const CrewTravelDocuments&, const CrewTravelDocuments&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewTravelDocuments, (),
                      (passportCountry, passportNumber, passportExpiry, driverLicenseNumber, driverLicenseState,
                       driverLicenseExpiry, seafarerIdNumber, seafarerIdExpiry))

template <template <class> class Held>
struct CrewTax {
  std::string taxIdCountry;
  Held<CrewTaxIDType> taxIdType;
  std::string taxIdNumber;
  friend bool operator==(const CrewTax&, const CrewTax&) = default;
  BOOST_DESCRIBE_CLASS(CrewTax, (), (taxIdCountry, taxIdType, taxIdNumber), (), ())
};

template <template <class> class Held>
struct CrewEmployment {
  std::optional<Timestamp> dateOfHire;
  Held<CrewEmploymentType> employmentType;
  Held<CrewEmploymentStatus> employmentStatus;
  double dayRate = 0;  ///< in `currency`, as is `annualSalary`
  double annualSalary = 0;
  std::string currency;  ///< ISO 4217 code
  std::optional<Timestamp> separationDate;
  std::string separationReason;
  friend bool operator==(const CrewEmployment&, const CrewEmployment&) = default;
  BOOST_DESCRIBE_CLASS(CrewEmployment, (),
                       (dateOfHire, employmentType, employmentStatus, dayRate, annualSalary, currency, separationDate,
                        separationReason),
                       (), ())
};

struct CrewHomeAndKin {
  std::string homeStreet;
  std::string homeCity;
  std::string homeState;
  std::string homePostal;
  std::string homeCountry;
  std::string nokName;
  std::string nokRelationship;
  std::string nokPhone;
  std::string nokEmail;
  std::string nokAddress;
  friend bool operator==(const CrewHomeAndKin&, const CrewHomeAndKin&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewHomeAndKin, (),
                      (homeStreet, homeCity, homeState, homePostal, homeCountry, nokName, nokRelationship, nokPhone,
                       nokEmail, nokAddress))

struct CrewBank {
  std::string bankAccountHolder;
  std::string bankName;
  std::string bankAccountNumber;
  std::string bankRoutingNumber;
  std::string bankSwift;
  std::string bankIban;
  friend bool operator==(const CrewBank&, const CrewBank&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewBank, (),
                      (bankAccountHolder, bankName, bankAccountNumber, bankRoutingNumber, bankSwift, bankIban))

/// One person of a vessel's crew.
struct CrewMember : CrewIdentity,
                    CrewDemographics<Choice>,
                    CrewTravelDocuments,
                    CrewTax<Choice>,
                    CrewEmployment<Choice>,
                    CrewHomeAndKin,
                    CrewBank {
  friend bool operator==(const CrewMember&, const CrewMember&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewMember,
                      (CrewIdentity, CrewDemographics<Choice>, CrewTravelDocuments, CrewTax<Choice>,
                       CrewEmployment<Choice>, CrewHomeAndKin, CrewBank),
                      ())
THALVORN_JSON_RECORD(CrewMember);

struct CrewBirth {
  std::optional<Timestamp> dateOfBirth;
  friend bool operator==(const CrewBirth&, const CrewBirth&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewBirth, (), (dateOfBirth))

/// The personal particulars of a crew member as one document, its enumerations as plain text.
struct CrewMemberExtended : CrewBirth,
                            CrewDemographics<PlainText>,
                            CrewTravelDocuments,
                            CrewTax<PlainText>,
                            CrewEmployment<PlainText>,
                            CrewHomeAndKin,
                            CrewBank {
  friend bool operator==(const CrewMemberExtended&, const CrewMemberExtended&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewMemberExtended,
                      (CrewBirth, CrewDemographics<PlainText>, CrewTravelDocuments, CrewTax<PlainText>,
                       CrewEmployment<PlainText>, CrewHomeAndKin, CrewBank),
                      ())
THALVORN_JSON_RECORD(CrewMemberExtended);

/// The personal particulars of a crew member.
CrewMemberExtended extendedOf(const CrewMember& member);

/// Puts the personal particulars into `member`; an empty text leaves an enumeration as it is.
void applyExtended(const CrewMemberExtended& extended, CrewMember& member);

template <>
struct RecordFacts<CrewMember> {
  static constexpr std::array facts{
      FieldFacts{.name = "firstName", .label = "First name", .required = true},
      FieldFacts{.name = "lastName", .label = "Last name"},
      FieldFacts{.name = "role", .label = "Role"},
      FieldFacts{.name = "nationality", .label = "Nationality"},
      FieldFacts{.name = "dateOfBirth", .label = "Date of birth", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "phone", .label = "Telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "email", .label = "E-mail", .entry = FieldEntry::email},
      FieldFacts{.name = "emergencyName", .label = "Emergency contact"},
      FieldFacts{.name = "emergencyPhone", .label = "Emergency telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "embarkDate", .label = "Embarked", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "disembarkDate", .label = "Disembarked", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "isActive", .label = "Active"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "certifications", .label = "Certifications"},
      FieldFacts{.name = "placeOfBirth", .label = "Place of birth"},
      FieldFacts{.name = "maritalStatus", .label = "Marital status"},
      FieldFacts{.name = "gender", .label = "Gender"},
      FieldFacts{.name = "passportCountry", .label = "Passport country"},
      FieldFacts{.name = "passportNumber", .label = "Passport number", .sensitive = true},
      FieldFacts{.name = "passportExpiry", .label = "Passport Expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "driverLicenseNumber", .label = "Driver’s license number", .sensitive = true},
      FieldFacts{.name = "driverLicenseState", .label = "Driver’s license state"},
      FieldFacts{.name = "driverLicenseExpiry", .label = "Driver’s license expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "seafarerIdNumber", .label = "Seafarer ID number", .sensitive = true},
      FieldFacts{.name = "seafarerIdExpiry", .label = "Seafarer Expires", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "taxIdCountry", .label = "Tax country"},
      FieldFacts{.name = "taxIdType", .label = "Tax number type"},
      FieldFacts{.name = "taxIdNumber", .label = "Tax number", .sensitive = true},
      FieldFacts{.name = "dateOfHire", .label = "Date of hire", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "employmentType", .label = "Employment"},
      FieldFacts{.name = "employmentStatus", .label = "Employment status"},
      FieldFacts{.name = "dayRate", .label = "Day rate", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "annualSalary", .label = "Annual salary", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "currency", .label = "Currency", .placeholder = "USD"},
      FieldFacts{.name = "separationDate", .label = "Set separation date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "separationReason", .label = "Reason of separation"},
      FieldFacts{.name = "homeStreet", .label = "Street"},
      FieldFacts{.name = "homeCity", .label = "City"},
      FieldFacts{.name = "homeState", .label = "State or province"},
      FieldFacts{.name = "homePostal", .label = "Postal code"},
      FieldFacts{.name = "homeCountry", .label = "Country"},
      FieldFacts{.name = "nokName", .label = "Next of kin"},
      FieldFacts{.name = "nokRelationship", .label = "Relationship"},
      FieldFacts{.name = "nokPhone", .label = "Next of kin’s telephone", .entry = FieldEntry::phone},
      FieldFacts{.name = "nokEmail", .label = "Next of kin’s e-mail", .entry = FieldEntry::email},
      FieldFacts{.name = "nokAddress", .label = "Next of kin’s address", .entry = FieldEntry::multiline},
      FieldFacts{.name = "bankAccountHolder", .label = "Account holder", .sensitive = true},
      FieldFacts{.name = "bankName", .label = "Bank"},
      FieldFacts{.name = "bankAccountNumber", .label = "Account number", .sensitive = true},
      FieldFacts{.name = "bankRoutingNumber", .label = "Routing number", .sensitive = true},
      FieldFacts{.name = "bankSwift", .label = "SWIFT / BIC", .sensitive = true},
      FieldFacts{.name = "bankIban", .label = "IBAN", .sensitive = true}};
};
static_assert(factsNameFields<CrewMember>());

}  // namespace thalvorn
