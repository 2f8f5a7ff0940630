"""The file service on the wire."""

import unittest

from backend import shared


def setUpModule():
    global backend, token, account
    backend = shared()
    backend.sql("insert into storage.buckets (id, name, public) values ('open', 'open', true);"
                "insert into storage.buckets (id, name, public, file_size_limit, allowed_mime_types) "
                "values ('small', 'small', false, 10, '{image/*}');"
                "create policy open_write on storage.objects to authenticated using (bucket_id in ('open', 'small')) "
                "with check (bucket_id in ('open', 'small'));")
    token = backend.sign_in().json["access_token"]
    account = backend.send("GET", "/rest/v1/account_members?select=account_id", token=token).json[0]["account_id"]


class StorageTest(unittest.TestCase):
    def setUp(self):
        self.path = f"task_photos/{account}/{self.id().split('.')[-1]}/photo.jpg"

    def object(self, method, path, body=None, **headers):
        return backend.send(method, "/storage/v1/object/" + path, body, **{"token": token, **headers})

    def upload(self, path, body=b"first", **headers):
        return self.object("POST", path, body, **{"content_type": "image/jpeg", **headers})

    def refused(self, reply, told, code, error=None, status=400, message=""):
        self.assertEqual((reply.status, reply.json["statusCode"], reply.json["code"]), (status, told, code), reply.text)
        self.assertEqual(reply.json["error"], error or code)
        self.assertIn(message, reply.json["message"])

    def test_upload_and_replace(self):
        created = self.upload(self.path)
        self.assertEqual((created.status, created.json["Key"]), (200, self.path))
        self.refused(self.upload(self.path), "409", "ResourceAlreadyExists", "Duplicate", message="The resource already exists")
        replaced = self.upload(self.path, b"second", x_upsert="true")
        self.assertEqual(replaced.json, created.json)
        self.assertEqual(self.object("GET", "authenticated/" + self.path).body, b"second")
        self.assertEqual(self.object("PUT", self.path, b"third", content_type="image/png").status, 200)
        read = self.object("GET", self.path)
        self.assertEqual((read.body, read.headers["Content-Type"], read.headers["Cache-Control"]), (b"third", "image/png", "no-cache"))

    def test_download_again_or_in_part(self):
        self.upload(self.path, b"0123456789", cache_control="max-age=60")
        path = "authenticated/" + self.path
        whole = self.object("GET", path)
        self.assertEqual((whole.headers["Accept-Ranges"], whole.headers["Cache-Control"]), ("bytes", "max-age=60"))
        self.assertTrue(whole.headers["Last-Modified"].endswith(" GMT"))
        unchanged = self.object("GET", path, if_none_match=whole.headers["ETag"])
        self.assertEqual((unchanged.status, unchanged.body), (304, b""))
        part = self.object("GET", path, range="bytes=4-")
        self.assertEqual((part.status, part.body, part.headers["Content-Range"]), (206, b"456789", "bytes 4-9/10"))
        head = self.object("HEAD", path)
        self.assertEqual((head.status, head.body, head.headers["Content-Length"]), (200, b"", "10"))

    def test_tokens_count_differently_on_each_path(self):
        self.upload(self.path)
        self.refused(self.object("GET", self.path, token=None), "404", "NoSuchKey", "not_found", message="Object not found")
        with backend.settings(clockOffset=3601):
            expired = ("403", "AccessDenied", "Unauthorized", 400, '"exp" claim timestamp check failed')
            self.refused(self.object("GET", "authenticated/" + self.path), *expired)
            self.refused(self.upload(self.path), *expired)
            self.refused(self.object("DELETE", self.path), *expired)
            self.refused(self.object("GET", self.path), "404", "NoSuchBucket", "Bucket not found")
            with backend.settings(olderErrors=True):
                older = self.upload(self.path)
                self.assertEqual((older.status, older.json["statusCode"], older.json["message"]), (400, "400", "jwt expired"))
        self.refused(self.object("GET", "public/" + self.path), "404", "NoSuchBucket", "Bucket not found")
        self.upload("open/notice.txt", content_type="text/plain")
        self.assertEqual(backend.bare("GET", "/storage/v1/object/public/open/notice.txt").body, b"first")

    def test_others_see_nothing_and_write_nothing(self):
        self.upload(self.path)
        stranger = backend.sign_in(backend.ready["accounts"][1]).json["access_token"]
        self.refused(self.object("GET", "authenticated/" + self.path, token=stranger), "404", "NoSuchKey", "not_found")
        refused = self.upload(self.path, b"mine now", token=stranger, x_upsert="true")
        self.refused(refused, "403", "AccessDenied", "Unauthorized", message="row-level security policy")
        self.refused(self.object("DELETE", self.path, token=stranger), "404", "NoSuchKey", "not_found")
        self.assertEqual(self.object("GET", self.path).body, b"first")

    def test_what_cannot_be_stored(self):
        for key in ("sm%C3%B8rt.jpg", "a%23b", "a%25b", "a%5Bb", "a~b"):
            self.refused(self.upload("open/" + key), "400", "InvalidKey", message="Invalid key")
        self.refused(self.upload("nowhere/a.jpg"), "404", "NoSuchBucket", "Bucket not found")
        self.refused(self.upload("small/a.jpg", b"x" * 11), "413", "EntityTooLarge", "Payload too large")
        self.refused(self.upload("small/a.txt", content_type="text/plain"), "415", "InvalidMimeType", "invalid_mime_type")
        doubled = self.upload(self.path, content_type="application/json, image/png")
        self.assertEqual((doubled.status, doubled.json["statusCode"]), (400, "415"))

    def test_deleting(self):
        self.upload(self.path)
        typed = self.object("DELETE", self.path, content_type="application/json")
        self.assertEqual((typed.status, typed.json["message"]),
                         (400, "Body cannot be empty when content-type is set to 'application/json'"))
        done = self.object("DELETE", self.path)
        self.assertEqual((done.status, done.json), (200, {"message": "Successfully deleted"}))
        self.refused(self.object("DELETE", self.path), "404", "NoSuchKey", "not_found", message="Object not found")
        names = [self.path.split("/", 1)[1] + str(n) for n in range(3)]
        for name in names[:2]:
            self.upload("task_photos/" + name)
        listed = self.object("POST", "list/task_photos", {"prefix": names[0].rsplit("/", 1)[0]})
        self.assertEqual([entry["name"] for entry in listed.json], ["photo.jpg0", "photo.jpg1"])
        removed = self.object("DELETE", "task_photos", {"prefixes": names})
        self.assertEqual((removed.status, sorted(row["name"] for row in removed.json)), (200, names[:2]))
