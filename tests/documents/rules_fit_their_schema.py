"""rules_fit_their_schema.py DOCUMENT SCHEMA REFUSED: fails unless every ```json block of the document
fits the schema, and none of the refused rules does."""

import json
import pathlib
import re
import sys

import jsonschema

document, schema_file, refused_file = map(pathlib.Path, sys.argv[1:])
schema = json.loads(schema_file.read_text("utf-8"))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)

blocks = re.findall(r"^```json\n(.*?)^```$", document.read_text("utf-8"), re.M | re.S)
complaints = [f"example {number}: {error.message}" for number, block in enumerate(blocks, 1)
              for error in validator.iter_errors(json.loads(block))]
complaints += [f"fits, but should not: {case['why']}"
               for case in json.loads(refused_file.read_text("utf-8"))
               if validator.is_valid({"version": 1, "rules": [case["rule"]]})]
if complaints or not blocks:
    sys.exit("\n".join(complaints) or f"{document} has no examples")
