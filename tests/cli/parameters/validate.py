#!/usr/bin/env python3
"""Judges documents by a JSON Schema: validate.py SCHEMA DOCUMENT... prints "valid" or "invalid" for each."""
import json
import sys

from jsonschema import Draft202012Validator


def read(name):
    with open(name, encoding="utf-8") as file:
        return json.load(file)


schema = read(sys.argv[1])
Draft202012Validator.check_schema(schema)
validator = Draft202012Validator(schema)
for document in sys.argv[2:]:
    print("valid" if validator.is_valid(read(document)) else "invalid")
