#include "devserver/seed.h"

#include <fmt/format.h>

namespace thalvorn::devserver {
namespace {

std::string refused(std::string_view what, const Response& response) {
  return fmt::format("{} was refused ({}): {}", what, response.status, response.body);
}

Request post(const Site& site, std::string path, const json::object& body, const std::string& token) {
  return {
      .method = "POST",
      .path = std::move(path),
      .query = {},
      .headers = {{"apikey", site.anonKey}, {"Authorization", "Bearer " + token}, {"Content-Type", "application/json"}},
      .body = json::serialize(body)};
}

}  // namespace

std::expected<std::vector<SeededPerson>, std::string> seed(Gateway& gateway, Site& site,
                                                           const DatabaseAddresses& database) {
  const auto settings = site.settings.get();
  auto unconfirmed = settings;
  unconfirmed.confirmEmail = false;
  site.settings.set(unconfirmed);
  Pool pool(database.superuser, 1);
  std::vector<SeededPerson> people;
  for (const auto* name : {"aurora", "borealis"}) {
    const SeededPerson person{.email = fmt::format("owner@{}.example", name), .password = randomText(12)};
    const auto signedUp = gateway.handle(
        post(site, "/auth/v1/signup", {{"email", person.email}, {"password", person.password}}, site.anonKey));
    if (signedUp.status != 200) return std::unexpected(refused("Signing up " + person.email, signedUp));
    const auto token = textMember(json::parse(signedUp.body).as_object(), "access_token");
    const auto account = gateway.handle(post(site, "/rest/v1/rpc/bootstrap_own_account", {}, token));
    people.push_back(person);
    if (account.status == 404) continue;
    if (account.status != 200) return std::unexpected(refused("An account for " + person.email, account));
    auto session = pool.borrow();
    if (!session) return std::unexpected(session.error().message);
    const auto seats = session->query(
        "update public.accounts set plan = 'fleet', additional_seats = 2 where id = (select account_id from "
        "public.account_members m join auth.users u on u.id = m.user_id where u.email = $1)",
        {person.email});
    if (!seats) return std::unexpected(seats.error().message);
  }
  site.settings.set(settings);
  return people;
}

}  // namespace thalvorn::devserver
