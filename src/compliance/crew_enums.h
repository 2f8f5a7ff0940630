#pragma once

#include <cstdint>

#include "base/enums.h"

namespace thalvorn {

enum class CrewRole : std::uint8_t {
  captain,
  firstOfficer,
  chiefEngineer,
  deckhand,
  bosun,
  chef,
  steward,
  engineer,
  medic,
  security,
  owner,
  guest,
  other
};

template <>
struct EnumTexts<CrewRole> {
  static constexpr std::array<EnumText, 13> table{{{"captain", "Captain"},
                                                   {"firstOfficer", "First Officer"},
                                                   {"chiefEngineer", "Chief Engineer"},
                                                   {"deckhand", "Deckhand"},
                                                   {"bosun", "Bosun"},
                                                   {"chef", "Chef"},
                                                   {"steward", "Steward/ess"},
                                                   {"engineer", "Engineer"},
                                                   {"medic", "Medic"},
                                                   {"security", "Security"},
                                                   {"owner", "Owner"},
                                                   {"guest", "Guest"},
                                                   {"other", "Other"}}};
};

enum class CrewEmploymentStatus : std::uint8_t { active, onLeave, suspended, terminated, retired };

template <>
struct EnumTexts<CrewEmploymentStatus> {
  static constexpr std::array<EnumText, 5> table{{{"active", "Active"},
                                                  {"onLeave", "On leave"},
                                                  {"suspended", "Suspended"},
                                                  {"terminated", "Terminated"},
                                                  {"retired", "Retired"}}};
};

enum class CrewEmploymentType : std::uint8_t { fullTime, partTime, dayRate, freelance, seasonal, contractor };

template <>
struct EnumTexts<CrewEmploymentType> {
  static constexpr std::array<EnumText, 6> table{{{"fullTime", "Full-time"},
                                                  {"partTime", "Part-time"},
                                                  {"dayRate", "Day rate"},
                                                  {"freelance", "Freelance"},
                                                  {"seasonal", "Seasonal"},
                                                  {"contractor", "Contractor"}}};
};

/// The kind of a tax number, by the abbreviation that its country uses.
enum class CrewTaxIDType : std::uint8_t { ssn, ein, nin, sin, tin, pps, tfn, ird, cpf, rfc, other };

template <>
struct EnumTexts<CrewTaxIDType> {
  static constexpr std::array<EnumText, 11> table{{{"ssn", "SSN (United States)"},
                                                   {"ein", "EIN (United States)"},
                                                   {"nin", "NIN (United Kingdom)"},
                                                   {"sin", "SIN (Canada)"},
                                                   {"tin", "TIN"},
                                                   {"pps", "PPS (Ireland)"},
                                                   {"tfn", "TFN (Australia)"},
                                                   {"ird", "IRD (New Zealand)"},
                                                   {"cpf", "CPF (Brazil)"},
                                                   {"rfc", "RFC (Mexico)"},
                                                   {"other", "Other"}}};
};

enum class CrewMaritalStatus : std::uint8_t { unspecified, single, married, partnered, divorced, widowed, separated };

template <>
struct EnumTexts<CrewMaritalStatus> {
  static constexpr std::array<EnumText, 7> table{{{"unspecified", "Not specified"},
                                                  {"single", "Single"},
                                                  {"married", "Married"},
                                                  {"partnered", "Partnered"},
                                                  {"divorced", "Divorced"},
                                                  {"widowed", "Widowed"},
                                                  {"separated", "Separated"}}};
};

enum class CertificationType : std::uint8_t {
  stcwBasic,
  stcwAdvanced,
  masterLicense,
  officerWatch,
  engineerLicense,
  medicalFirst,
  medicalAdvanced,
  firefighting,
  securityAware,
  securityDuty,
  pistol,
  rya,
  uscg,
  mca,
  passp,
  seamansBook,
  yellowFever,
  medical,
  gmdssRadio,
  custom
};

template <>
struct EnumTexts<CertificationType> {
  static constexpr std::array<EnumText, 20> table{{{"stcwBasic", "STCW Basic Safety"},
                                                   {"stcwAdvanced", "STCW Advanced Safety"},
                                                   {"masterLicense", "Master License"},
                                                   {"officerWatch", "Officer of the Watch"},
                                                   {"engineerLicense", "Engineer License"},
                                                   {"medicalFirst", "Medical First Aid"},
                                                   {"medicalAdvanced", "Medical Advanced"},
                                                   {"firefighting", "Advanced Firefighting"},
                                                   {"securityAware", "Security Awareness"},
                                                   {"securityDuty", "Designated Security Duties"},
                                                   {"pistol", "Pistol / Firearm"},
                                                   {"rya", "RYA Certificate"},
                                                   {"uscg", "USCG License"},
                                                   {"mca", "MCA Certificate"},
                                                   {"passp", "Passport"},
                                                   {"seamansBook", "Seaman’s Book"},
                                                   {"yellowFever", "Yellow Fever Vaccination"},
                                                   {"medical", "Medical Certificate (ENG1)"},
                                                   {"gmdssRadio", "GMDSS Radio Operator"},
                                                   {"custom", "Other Certificate"}}};
};

}  // namespace thalvorn
