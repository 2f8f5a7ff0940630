#include "compliance/crew_member.h"

namespace thalvorn {
namespace {

template <class T>
void assign(T& to, const T& from) {
  to = from;
}

template <class E>
void assign(std::string& to, Choice<E> from) {
  to = from.raw();
}

template <class E>
void assign(Choice<E>& to, const std::string& from) {
  if (!from.empty()) to = Choice<E>::fromRaw(from);
}

/// Copies every field of the extended particulars between the two records, matched by name.
template <class From, class To>
void copyExtended(const From& from, To& to) {
  boost::mp11::mp_for_each<FieldList<CrewMemberExtended>>([&](auto field) {
    constexpr std::size_t source = fieldIndex<From>(decltype(field)::name);
    constexpr std::size_t target = fieldIndex<To>(decltype(field)::name);
    assign(to.*boost::mp11::mp_at_c<FieldList<To>, target>::pointer,
           from.*boost::mp11::mp_at_c<FieldList<From>, source>::pointer);
  });
}

}  // namespace

CrewMemberExtended extendedOf(const CrewMember& member) {
  CrewMemberExtended extended;
  copyExtended(member, extended);
  return extended;
}

void applyExtended(const CrewMemberExtended& extended, CrewMember& member) { copyExtended(extended, member); }

}  // namespace thalvorn
