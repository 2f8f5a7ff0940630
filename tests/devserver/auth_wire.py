"""The sign-in service on the wire."""

import base64
import json
import unittest
import urllib.parse

from backend import shared

PASSWORD = "correct horse"


def setUpModule():
    global backend
    backend = shared()


def claims(token):
    return json.loads(base64.urlsafe_b64decode(token.split(".")[1] + "=="))


class AuthTest(unittest.TestCase):
    def auth(self, method, path, body=None, token=None, **headers):
        return backend.send(method, "/auth/v1/" + path, body, token=token, **headers)

    def refresh(self, token):
        return self.auth("POST", "token?grant_type=refresh_token", {"refresh_token": token})

    def refused(self, reply, status, code, message=""):
        self.assertEqual((reply.status, reply.json["code"], reply.json["error_code"]), (status, status, code), reply.text)
        self.assertEqual(reply.headers["x-sb-error-code"], code)
        self.assertIn(message, reply.json["msg"])

    def person(self, email):
        reply = backend.sign_up(email, PASSWORD)
        self.assertEqual(reply.status, 200, reply.text)
        return reply.json


class SigningIn(AuthTest):
    def test_tokens_stand_at_the_top_of_the_reply(self):
        signed_up = self.person("Mixed.Case@Auth.Example")
        reply = backend.sign_in({"email": "MIXED.case@auth.example", "password": PASSWORD}).json
        for body in (signed_up, reply):
            self.assertLessEqual({"access_token", "token_type", "expires_in", "expires_at", "refresh_token", "user"}, set(body))
            self.assertEqual((body["token_type"], body["expires_in"], "session" in body), ("bearer", 3600, False))
            self.assertEqual(body["user"]["email"], "mixed.case@auth.example")
        held = claims(reply["access_token"])
        self.assertEqual((held["role"], held["aud"], held["sub"]), ("authenticated", "authenticated", reply["user"]["id"]))
        self.assertEqual(held["exp"] - held["iat"], 3600)
        self.assertLessEqual({"iss", "email", "phone", "session_id", "aal", "amr", "app_metadata", "user_metadata", "is_anonymous"},
                             set(held))

    def test_refusals_have_three_forms(self):
        wrong = {"email": "mixed.case@auth.example", "password": "wrong"}
        self.refused(backend.sign_in(wrong), 400, "invalid_credentials", "Invalid login credentials")
        newer = self.auth("POST", "token?grant_type=password", wrong, x_supabase_api_version="2024-01-01")
        self.assertEqual(newer.json, {"code": "invalid_credentials", "message": "Invalid login credentials"})
        self.assertEqual(newer.headers["X-Supabase-Api-Version"], "2024-01-01")
        with backend.settings(olderErrors=True):
            older = backend.sign_in(wrong)
            self.assertEqual((older.status, older.json), (400, {"error": "invalid_grant", "error_description": "Invalid login credentials"}))
        self.refused(self.auth("POST", "token?grant_type=magic", {}), 400, "unsupported_grant_type")
        self.refused(self.auth("POST", "token?grant_type=password", "{", content_type="application/json"), 400, "bad_json")
        self.person("banned@auth.example")
        backend.sql("update auth.users set banned_until = now() + interval '1 day' where email = 'banned@auth.example'")
        self.refused(backend.sign_in({"email": "banned@auth.example", "password": PASSWORD}), 400, "user_banned")

    def test_signing_up_refuses_what_cannot_be(self):
        weak = backend.sign_up("weak@auth.example", "short")
        self.refused(weak, 422, "weak_password", "at least 6 characters")
        self.assertEqual(weak.json["weak_password"], {"reasons": ["length"]})
        self.refused(backend.sign_up("weak@auth.example", "x" * 73), 400, "validation_failed")
        self.refused(backend.sign_up("no address"), 400, "validation_failed")
        self.person("twice@auth.example")
        self.refused(backend.sign_up("twice@auth.example"), 422, "user_already_exists", "User already registered")


class Refreshing(AuthTest):
    def test_tokens_rotate_and_spent_ones_have_a_grace(self):
        first = self.person("rotate@auth.example")
        second = self.refresh(first["refresh_token"]).json
        self.assertNotEqual(second["refresh_token"], first["refresh_token"])
        self.assertEqual(claims(second["access_token"])["session_id"], claims(first["access_token"])["session_id"])
        with backend.settings(reuseInterval=0):
            parent = self.refresh(first["refresh_token"]).json
            self.assertEqual(parent["refresh_token"], second["refresh_token"], "the active one's parent gets the active one")
        third = self.refresh(second["refresh_token"]).json
        self.assertEqual(self.refresh(first["refresh_token"]).status, 200, "within the interval")
        self.assertEqual(self.refresh(third["refresh_token"]).status, 200)

    def test_reuse_ends_the_session(self):
        first = self.person("reuse@auth.example")
        second = self.refresh(first["refresh_token"]).json
        third = self.refresh(second["refresh_token"]).json
        with backend.settings(reuseInterval=0):
            self.refused(self.refresh(first["refresh_token"]), 400, "refresh_token_already_used", "Invalid Refresh Token: Already Used")
            self.refused(self.refresh(third["refresh_token"]), 400, "refresh_token_already_used")
        self.refused(self.refresh("x" * 12), 400, "refresh_token_not_found")
        self.refused(self.refresh("short"), 400, "validation_failed", "Refresh token is not valid")

    def test_lifetimes_are_set_by_the_server(self):
        with backend.settings(tokenLifetime=5):
            self.assertEqual(self.person("brief@auth.example")["expires_in"], 5)


class Users(AuthTest):
    def test_bearers_that_do_not_hold(self):
        token = self.person("bearer@auth.example")["access_token"]
        self.assertEqual(self.auth("GET", "user", token=token).json["email"], "bearer@auth.example")
        self.refused(self.auth("GET", "user"), 401, "no_authorization")
        self.refused(self.auth("GET", "user", token=backend.ready["anonKey"]), 403, "bad_jwt")
        with backend.settings(clockOffset=3601):
            self.refused(self.auth("GET", "user", token=token), 403, "bad_jwt", "token is expired")

    def test_signing_out_by_scope(self):
        def devices():
            return [backend.sign_in({"email": "scope@auth.example", "password": PASSWORD}).json for _ in range(2)]
        self.person("scope@auth.example")
        one, two = devices()
        done = self.auth("POST", "logout?scope=local", token=one["access_token"])
        self.assertEqual((done.status, done.body), (204, b""))
        self.refused(self.auth("GET", "user", token=one["access_token"]), 403, "session_not_found")
        self.refused(self.refresh(one["refresh_token"]), 400, "refresh_token_not_found")
        rows = backend.send("GET", "/rest/v1/account_members", token=one["access_token"])
        self.assertEqual(rows.status, 200, "tables take the token until it expires")
        self.assertEqual(self.auth("POST", "logout?scope=others", token=two["access_token"]).status, 204)
        self.assertEqual(self.refresh(two["refresh_token"]).status, 200)
        one, two = devices()
        self.assertEqual(self.auth("POST", "logout", token=one["access_token"]).status, 204)
        self.refused(self.auth("GET", "user", token=two["access_token"]), 403, "session_not_found")

    def test_changing_credentials(self):
        first = self.person("change@auth.example")
        other = backend.sign_in({"email": "change@auth.example", "password": PASSWORD}).json
        token = first["access_token"]
        self.refused(self.auth("PUT", "user", {"password": PASSWORD}, token), 422, "same_password")
        self.refused(self.auth("PUT", "user", {"password": "short"}, token), 422, "weak_password")
        self.refused(self.auth("PUT", "user", {"email": backend.ready["accounts"][0]["email"]}, token), 422, "email_exists")
        changed = self.auth("PUT", "user", {"email": "changed@auth.example", "password": "another horse", "data": {"flag": True}}, token)
        self.assertEqual((changed.status, changed.json["email"], changed.json["user_metadata"]), (200, "changed@auth.example", {"flag": True}))
        self.refused(self.auth("GET", "user", token=other["access_token"]), 403, "session_not_found")
        self.assertEqual(backend.sign_in({"email": "changed@auth.example", "password": "another horse"}).status, 200)


class Mails(AuthTest):
    def setUp(self):
        context = backend.settings(confirmEmail=True, mailInterval=0)
        context.__enter__()
        self.addCleanup(context.__exit__, None, None, None)

    def verify(self, mail, **change):
        return self.auth("POST", "verify", {"type": mail["type"], "email": mail["to"], "token": mail["code"], **change})

    def follow(self, link):
        parts = urllib.parse.urlsplit(link)
        reply = backend.bare("GET", f"{parts.path}?{parts.query}")
        self.assertEqual(reply.status, 303)
        target, fragment = reply.headers["Location"].split("#")
        return target, dict(urllib.parse.parse_qsl(fragment, keep_blank_values=True))

    def test_confirmation(self):
        waiting = self.person("confirm@auth.example")
        self.assertEqual((waiting["email"], "access_token" in waiting, "user" in waiting), ("confirm@auth.example", False, False))
        self.assertIn("confirmation_sent_at", waiting)
        credentials = {"email": "confirm@auth.example", "password": PASSWORD}
        self.refused(backend.sign_in(credentials), 400, "email_not_confirmed", "Email not confirmed")
        mail = backend.mails("confirm@auth.example")[-1]
        self.refused(self.verify(mail, token="000000x"), 403, "otp_expired")
        self.assertIn("access_token", self.verify(mail).json)
        self.refused(self.verify(mail), 403, "otp_expired", "Token has expired or is invalid")
        self.assertEqual(backend.sign_in(credentials).status, 200)
        known = self.person("confirm@auth.example")
        self.assertEqual((known["identities"], known["email"], known["id"] == waiting["id"]), ([], "confirm@auth.example", False))
        self.assertEqual(len(backend.mails("confirm@auth.example")), 1)

    def test_recovery_by_link(self):
        person = backend.ready["accounts"][1]
        path = "recover?redirect_to=" + urllib.parse.quote("thalvorn://reset-password", safe="")
        self.assertEqual(self.auth("POST", path, {"email": "nobody@auth.example"}).json, {})
        self.assertEqual((self.auth("POST", path, {"email": person["email"]}).json, backend.mails("nobody@auth.example")), ({}, []))
        mail = backend.mails(person["email"])[-1]
        target, fragment = self.follow(mail["link"])
        self.assertEqual((target, fragment["type"], fragment["token_type"]), ("thalvorn://reset-password", "recovery", "bearer"))
        self.assertEqual(self.auth("GET", "user", token=fragment["access_token"]).json["email"], person["email"])
        self.assertEqual(self.refresh(fragment["refresh_token"]).status, 200)
        target, fragment = self.follow(mail["link"])
        self.assertEqual((target, fragment["error_code"]), ("thalvorn://reset-password", "otp_expired"))
        self.auth("POST", "recover?redirect_to=https%3A%2F%2Felsewhere.example", {"email": person["email"]})
        self.assertNotIn("elsewhere", self.follow(backend.mails(person["email"])[-1]["link"])[0])
        with backend.settings(mailInterval=60):
            self.refused(self.auth("POST", "recover", {"email": person["email"]}), 429, "over_email_send_rate_limit",
                         "For security purposes, you can only request this after")

    def test_a_new_address_counts_once_both_are_confirmed(self):
        self.person("before@auth.example")
        session = self.verify(backend.mails("before@auth.example")[-1]).json
        reply = self.auth("PUT", "user", {"email": "after@auth.example"}, session["access_token"]).json
        self.assertEqual((reply["email"], reply["new_email"]), ("before@auth.example", "after@auth.example"))
        self.assertIn("proceed to confirm link sent to the other email", self.verify(backend.mails("before@auth.example")[-1]).json["msg"])
        done = self.verify(backend.mails("after@auth.example")[-1]).json
        self.assertEqual((done["user"]["email"], "new_email" in done["user"]), ("after@auth.example", False))
