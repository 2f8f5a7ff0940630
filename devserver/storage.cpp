#include "devserver/storage.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>

#include "base/uuid.h"

namespace thalvorn::devserver {
namespace {

namespace fs = std::filesystem;

constexpr long long kLargestObject = 50LL << 20;
constexpr std::size_t kMostPrefixes = 1000;

/// Why the service refuses. Thrown and caught within this file.
struct Refusal {
  int status;  ///< as told in the body; the reply itself is nearly always 400
  std::string error;
  std::string code;
  std::string message;
};

[[noreturn]] void refuse(int status, std::string error, std::string code, std::string message) {
  throw Refusal{.status = status, .error = std::move(error), .code = std::move(code), .message = std::move(message)};
}
[[noreturn]] void noSuchBucket() { refuse(404, "Bucket not found", "NoSuchBucket", "Bucket not found"); }
[[noreturn]] void noSuchKey() { refuse(404, "not_found", "NoSuchKey", "Object not found"); }
[[noreturn]] void tooLarge() {
  refuse(413, "Payload too large", "EntityTooLarge", "The object exceeded the maximum allowed size");
}

[[noreturn]] void refuse(const DatabaseError& error) {
  if (error.sqlstate == "42501") refuse(403, "Unauthorized", "AccessDenied", error.message);
  if (error.sqlstate == "23505") refuse(409, "Duplicate", "ResourceAlreadyExists", "The resource already exists");
  if (error.sqlstate == "55P03") refuse(423, "ResourceLocked", "ResourceLocked", "The resource is locked");
  if (error.sqlstate == "57014") {
    refuse(544, "DatabaseTimeout", "DatabaseTimeout", "The connection to the database timed out");
  }
  fmt::print(stderr, "thalvorn-devserver: file service: {}\n", error.message);
  refuse(500, "DatabaseError", "DatabaseError", error.message);
}

struct Bucket {
  std::string id;
  bool isPublic = false;
  long long sizeLimit = kLargestObject;
  std::vector<std::string> types;  ///< allowed; empty: all
};

struct Object {
  std::string id;
  std::string version;
  json::object metadata;
  std::string modified;  ///< as an HTTP date
};

bool isKeyCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("_/!.*'() &$=@;:+,?-").find(c) != std::string_view::npos;
}

bool typeAllowed(const Bucket& bucket, std::string_view type) {
  return bucket.types.empty() || std::ranges::any_of(bucket.types, [&](std::string_view allowed) {
           return allowed == type || allowed == "*/*" ||
                  (allowed.ends_with("/*") && type.starts_with(allowed.substr(0, allowed.size() - 1)));
         });
}

/// One request.
class Exchange {
 public:
  Exchange(const Request& request, Session& session, const fs::path& folder, const json::object* claims)
      : request_(request), session_(session), folder_(folder), claims_(claims) {}

  Response upload(const std::string& bucketId, const std::string& key, bool replace);
  Response download(const std::string& bucketId, const std::string& key, bool asCaller, bool mustBePublic);
  Response remove(const std::string& bucketId, const std::string& key);
  Response removeMany(const std::string& bucketId);
  Response list(const std::string& bucketId);
  Response listBuckets();

  const std::vector<fs::path>& obsolete() const { return obsolete_; }
  const std::vector<fs::path>& written() const { return written_; }

 private:
  Rows query(const std::string& sql, const Parameters& parameters = {}) {
    auto rows = session_.query(sql, parameters);
    if (!rows) refuse(rows.error());
    return std::move(*rows);
  }
  /// From here on the policies of the caller hold.
  void become();
  std::optional<Bucket> findBucket(const std::string& id);
  Bucket bucket(const std::string& id);
  std::optional<Object> findObject(const std::string& bucketId, const std::string& key);
  fs::path file(const std::string& version) const { return folder_ / version; }
  json::object body();

  const Request& request_;
  Session& session_;
  const fs::path& folder_;
  const json::object* claims_;
  std::vector<fs::path> written_;   ///< to be removed when the transaction fails
  std::vector<fs::path> obsolete_;  ///< to be removed when it succeeds
};

void Exchange::become() {
  const auto role = textMember(*claims_, "role");
  query(
      "select set_config('role', $1, true), set_config('request.jwt.claims', $2, true), "
      "set_config('request.method', $3, true), set_config('storage.operation', $4, true)",
      {role.empty() ? "anon" : role, json::serialize(*claims_), request_.method, "storage.object"});
}

std::optional<Bucket> Exchange::findBucket(const std::string& id) {
  const auto rows = query(
      "select id, coalesce(public, false), file_size_limit, to_json(allowed_mime_types) from storage.buckets "
      "where id = $1",
      {id});
  if (rows.size() == 0) return std::nullopt;
  Bucket bucket{.id = id, .isPublic = rows.text(0, 1) == "t", .sizeLimit = kLargestObject, .types = {}};
  if (!rows.isNull(0, 2)) bucket.sizeLimit = std::min(kLargestObject, rows.number(0, 2));
  if (!rows.isNull(0, 3)) {
    for (const auto& type : json::parse(std::string(rows.text(0, 3))).as_array())
      bucket.types.emplace_back(type.as_string());
  }
  return bucket;
}

Bucket Exchange::bucket(const std::string& id) {
  auto found = findBucket(id);
  if (!found) noSuchBucket();
  return std::move(*found);
}

std::optional<Object> Exchange::findObject(const std::string& bucketId, const std::string& key) {
  const auto rows = query(
      "select id, version, coalesce(metadata, '{}'), to_char(updated_at at time zone 'utc', "
      "'Dy, DD Mon YYYY HH24:MI:SS \"GMT\"') from storage.objects where bucket_id = $1 and name = $2",
      {bucketId, key});
  if (rows.size() == 0) return std::nullopt;
  return Object{.id = std::string(rows.text(0, 0)),
                .version = std::string(rows.text(0, 1)),
                .metadata = json::parse(std::string(rows.text(0, 2))).as_object(),
                .modified = std::string(rows.text(0, 3))};
}

json::object Exchange::body() {
  boost::system::error_code bad;
  auto value = json::parse(request_.body, bad);
  if (bad || !value.is_object()) refuse(400, "invalid_request", "InvalidRequest", "body must be object");
  return std::move(value.get_object());
}

Response Exchange::upload(const std::string& bucketId, const std::string& key, bool replace) {
  if (key.empty() || !std::ranges::all_of(key, isKeyCharacter)) {
    refuse(400, "InvalidKey", "InvalidKey", "Invalid key: " + key);
  }
  const auto bucket = this->bucket(bucketId);
  const auto type = std::string(request_.headerOr("Content-Type", "application/octet-stream"));
  if (type.find(',') != std::string::npos) {
    refuse(415, "Unsupported Media Type", "InvalidRequest", "Unsupported Media Type: " + type);
  }
  if (!typeAllowed(bucket, trimmed(type.substr(0, type.find(';'))))) {
    refuse(415, "invalid_mime_type", "InvalidMimeType", fmt::format("mime type {} is not supported", type));
  }
  if (request_.bodyTooLarge || static_cast<long long>(request_.body.size()) > bucket.sizeLimit) tooLarge();

  // Writers of one path come one after the other, so that each knows whose bytes it replaces.
  query("set local lock_timeout = '2s'");
  const auto previous =
      query("select version from storage.objects where bucket_id = $1 and name = $2 for update", {bucketId, key});
  const auto version = Uuid::random().toString();
  written_.push_back(file(version));
  std::ofstream out(written_.back(), std::ios::binary);
  out.write(request_.body.data(), static_cast<std::streamsize>(request_.body.size()));
  out.close();
  if (!out) refuse(500, "InternalError", "InternalError", "The file could not be stored");
  if (previous.size() > 0 && replace) obsolete_.push_back(file(std::string(previous.text(0, 0))));

  const auto id = Uuid::random().toString();
  const json::object metadata{{"eTag", "\"" + sha224(request_.body).substr(0, 32) + "\""},
                              {"size", request_.body.size()},
                              {"mimetype", type},
                              {"cacheControl", request_.headerOr("cache-control", "no-cache")},
                              {"contentLength", request_.body.size()},
                              {"httpStatusCode", 200}};
  auto subject = textMember(*claims_, "sub");
  const Parameter owner = subject.empty() ? Parameter() : Parameter(subject);
  become();
  std::string sql =
      "insert into storage.objects (id, bucket_id, name, owner, owner_id, version, metadata) "
      "values ($1, $2, $3, $4::text::uuid, $4::text, $5, $6)";
  if (replace) {
    sql +=
        " on conflict (bucket_id, name) do update set version = excluded.version, owner = excluded.owner, "
        "owner_id = excluded.owner_id, metadata = excluded.metadata, updated_at = now() returning id";
  }
  const auto stored = query(sql, {id, bucketId, key, owner, version, json::serialize(metadata)});
  const auto told = replace ? std::string(stored.text(0, 0)) : id;
  return jsonResponse(200, json::serialize(json::object{{"Key", bucketId + "/" + key}, {"Id", told}}));
}

struct ByteRange {
  std::size_t first;
  std::size_t last;
};

std::optional<ByteRange> byteRange(std::string_view header, std::size_t size) {
  if (!header.starts_with("bytes=") || size == 0) return std::nullopt;
  header.remove_prefix(6);
  const auto dash = header.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto number = [](std::string_view digits) -> std::optional<std::size_t> {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
  };
  const auto first = number(header.substr(0, dash));
  const auto last = number(header.substr(dash + 1));
  if (!first && last) return ByteRange{.first = size - std::min(*last, size), .last = size - 1};
  if (!first) return std::nullopt;
  return ByteRange{.first = *first, .last = std::min(last.value_or(size - 1), size - 1)};
}

Response Exchange::download(const std::string& bucketId, const std::string& key, bool asCaller, bool mustBePublic) {
  const auto bucket = findBucket(bucketId);
  if (!bucket || (mustBePublic && !bucket->isPublic)) noSuchBucket();
  if (asCaller) become();
  const auto object = findObject(bucketId, key);
  if (!object) noSuchKey();
  std::ifstream in(file(object->version), std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), {});
  if (!in.good() && !in.eof()) noSuchKey();
  Response response;
  response.with("Content-Type", textMember(object->metadata, "mimetype"))
      .with("Accept-Ranges", "bytes")
      .with("ETag", textMember(object->metadata, "eTag"))
      .with("Last-Modified", object->modified)
      .with("Cache-Control", textMember(object->metadata, "cacheControl"));
  if (request_.header("If-None-Match") &&
      request_.headerOr("If-None-Match", "") == textMember(object->metadata, "eTag")) {
    response.status = 304;
    return response;
  }
  if (const auto range = byteRange(request_.headerOr("Range", ""), bytes.size())) {
    if (range->first > range->last) refuse(400, "invalid_range", "InvalidRange", "invalid range provided");
    response.status = 206;
    response.with("Content-Range", fmt::format("bytes {}-{}/{}", range->first, range->last, bytes.size()));
    bytes = bytes.substr(range->first, range->last - range->first + 1);
  }
  response.body = std::move(bytes);
  return response;
}

Response Exchange::remove(const std::string& bucketId, const std::string& key) {
  (void)bucket(bucketId);
  become();
  query("select set_config('storage.allow_delete_query', 'true', true)");
  const auto object = findObject(bucketId, key);
  if (!object) noSuchKey();
  const auto removed =
      query("delete from storage.objects where bucket_id = $1 and name = $2 returning version", {bucketId, key});
  if (removed.size() == 0) refuse(403, "Unauthorized", "AccessDenied", "Access denied");
  obsolete_.push_back(file(object->version));
  return jsonResponse(200, R"({"message":"Successfully deleted"})");
}

constexpr auto* kListed =
    "json_build_object('id', id, 'bucket_id', bucket_id, 'name', name, 'owner', owner, 'owner_id', owner_id, "
    "'version', "
    "version, 'created_at', created_at, 'updated_at', updated_at, 'last_accessed_at', last_accessed_at, 'metadata', "
    "metadata)";

Response Exchange::removeMany(const std::string& bucketId) {
  const auto request = body();
  const auto* prefixes = request.if_contains("prefixes");
  if (!prefixes || !prefixes->is_array() || prefixes->get_array().empty() ||
      prefixes->get_array().size() > kMostPrefixes) {
    refuse(400, "invalid_request", "InvalidRequest", "body/prefixes must hold 1 to 1000 items");
  }
  (void)bucket(bucketId);
  become();
  query("select set_config('storage.allow_delete_query', 'true', true)");
  const auto removed =
      query(fmt::format("with removed as (delete from storage.objects where bucket_id = $1 and name in "
                        "(select json_array_elements_text($2::json)) returning *) "
                        "select coalesce(json_agg({0}), '[]'), coalesce(json_agg(version), '[]') from removed",
                        kListed),
            {bucketId, json::serialize(*prefixes)});
  for (const auto& version : json::parse(std::string(removed.text(0, 1))).as_array()) {
    if (version.is_string()) obsolete_.push_back(file(std::string(version.get_string())));
  }
  return jsonResponse(200, std::string(removed.text(0, 0)));
}

Response Exchange::list(const std::string& bucketId) {
  const auto request = body();
  const auto number = [&](std::string_view name, std::int64_t otherwise) {
    const auto* value = request.if_contains(name);
    return std::to_string(value && value->is_int64() ? std::max<std::int64_t>(0, value->get_int64()) : otherwise);
  };
  auto prefix = textMember(request, "prefix");
  if (!prefix.empty() && !prefix.ends_with('/')) prefix += '/';
  become();
  // What lies directly below the prefix: files as they are, folders as names without an id.
  const auto rows = query(
      "select coalesce(json_agg(entry order by name), '[]') from (select name, entry from ("
      "  select distinct on (split_part(substr(name, length($2) + 1), '/', 1)) "
      "    split_part(substr(name, length($2) + 1), '/', 1) as name, "
      "    case when position('/' in substr(name, length($2) + 1)) = 0 then json_build_object('name', "
      "      substr(name, length($2) + 1), 'id', id, 'updated_at', updated_at, 'created_at', created_at, "
      "      'last_accessed_at', last_accessed_at, 'metadata', metadata) "
      "    else json_build_object('name', split_part(substr(name, length($2) + 1), '/', 1), 'id', null, 'updated_at', "
      "      null, 'created_at', null, 'last_accessed_at', null, 'metadata', null) end as entry "
      "  from storage.objects where bucket_id = $1 and starts_with(name, $2)) below "
      "order by name limit $3::bigint offset $4::bigint) page",
      {bucketId, prefix, number("limit", 100), number("offset", 0)});
  return jsonResponse(200, std::string(rows.text(0, 0)));
}

Response Exchange::listBuckets() {
  become();
  const auto rows = query(
      "select coalesce(json_agg(json_build_object('id', id, 'name', name, 'owner', coalesce(owner_id, ''), 'public', "
      "public, 'file_size_limit', file_size_limit, 'allowed_mime_types', allowed_mime_types, 'created_at', created_at, "
      "'updated_at', updated_at) order by id), '[]') from storage.buckets");
  return jsonResponse(200, std::string(rows.text(0, 0)));
}

Refusal tokenRefusal(TokenFault fault, bool olderForm) {
  std::string text = "signature verification failed";
  if (fault == TokenFault::malformed) text = "Invalid Compact JWS";
  if (fault == TokenFault::expired) text = olderForm ? "jwt expired" : "\"exp\" claim timestamp check failed";
  if (fault == TokenFault::notYetValid) text = "\"nbf\" claim timestamp check failed";
  return {.status = olderForm ? 400 : 403,
          .error = olderForm ? "invalid_jwt" : "Unauthorized",
          .code = "AccessDenied",
          .message = std::move(text)};
}

Response refusalReply(const Refusal& refusal, bool olderForm) {
  json::object body{
      {"statusCode", std::to_string(refusal.status)}, {"error", refusal.error}, {"message", refusal.message}};
  if (!olderForm) body["code"] = refusal.code;
  const int status = refusal.status == 500 || refusal.status == 544 || refusal.status == 429 ? refusal.status : 400;
  return jsonResponse(status, json::serialize(body), "application/json; charset=utf-8");
}

struct Target {
  std::string bucket;
  std::string key;
};

Target target(std::string_view path) {
  const auto slash = path.find('/');
  Target out{.bucket = percentDecoded(path.substr(0, slash), false), .key = {}};
  if (slash != std::string_view::npos) out.key = percentDecoded(path.substr(slash + 1), false);
  return out;
}

}  // namespace

Response StorageService::handle(const Request& request, const std::expected<json::object, TokenFault>& claims) {
  const bool olderForm = settings_.get().olderErrors;
  std::string_view path = request.path;
  const bool reads = request.method == "GET" || request.isHead();
  const auto takePrefix = [&](std::string_view prefix) {
    if (!path.starts_with(prefix)) return false;
    path.remove_prefix(prefix.size());
    return true;
  };
  // The service's HTTP server refuses this before any route is looked at.
  const auto type = request.headerOr("Content-Type", "");
  if (request.method == "DELETE" && request.body.empty() && type.starts_with("application/json")) {
    return jsonResponse(400, json::serialize(json::object{
                                 {"statusCode", "400"},
                                 {"error", "Bad Request"},
                                 {"message", "Body cannot be empty when content-type is set to 'application/json'"},
                                 {"code", "FST_ERR_CTP_EMPTY_JSON_BODY"}}));
  }
  const auto none = [&] {
    return jsonResponse(404, json::serialize(json::object{
                                 {"message", fmt::format("Route {}:{} not found", request.method, request.path)},
                                 {"error", "Not Found"},
                                 {"statusCode", 404}}));
  };
  std::vector<fs::path> leftovers;
  const auto discard = [&] {
    for (const auto& leftover : leftovers) {
      std::error_code ignored;
      fs::remove(leftover, ignored);
    }
  };
  try {
    auto session = pool_.borrow();
    if (!session) refuse(session.error());
    if (auto begun = session->run("begin"); !begun) refuse(begun.error());
    Exchange exchange(request, *session, folder_, claims ? &*claims : nullptr);
    const auto requireToken = [&] {
      if (!claims) throw tokenRefusal(claims.error(), olderForm);
    };
    std::optional<Response> response;
    if (reads && (path == "/bucket" || path == "/bucket/")) {
      requireToken();
      response = exchange.listBuckets();
    } else if (!takePrefix("/object/")) {
      return none();
    } else if (reads) {
      const bool isPublic = takePrefix("public/");
      const bool authenticated = !isPublic && takePrefix("authenticated/");
      const auto [bucket, key] = target(path);
      if (authenticated) requireToken();
      // The plain path takes a token that does not hold for no token at all.
      response = exchange.download(bucket, key, !isPublic && claims, isPublic || !claims);
    } else {
      takePrefix("authenticated/");
      requireToken();
      const bool lists = request.method == "POST" && takePrefix("list/");
      const auto [bucket, key] = target(path);
      if (lists) {
        response = exchange.list(bucket);
      } else if (request.method == "POST" || request.method == "PUT") {
        const bool replace = request.method == "PUT" || request.headerOr("x-upsert", "") == "true";
        try {
          response = exchange.upload(bucket, key, replace);
        } catch (const Refusal&) {
          leftovers = exchange.written();
          throw;
        }
      } else if (request.method == "DELETE") {
        response = key.empty() ? exchange.removeMany(bucket) : exchange.remove(bucket, key);
      } else {
        return none();
      }
    }
    if (const auto done = session->commit(); !done) {
      leftovers = exchange.written();
      refuse(done.error());
    }
    leftovers = exchange.obsolete();
    discard();
    return std::move(*response);
  } catch (const Refusal& refusal) {
    discard();
    return refusalReply(refusal, olderForm);
  }
}

}  // namespace thalvorn::devserver
