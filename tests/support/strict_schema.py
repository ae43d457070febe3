"""JSON schemas, taken at their word."""
# SPDX-License-Identifier: MIT


def strict(schema, others_may_be_allowed=False):
    """The schema that allows no member beyond those it names; where others may be allowed: unless it says so."""
    if isinstance(schema, list):
        return [strict(part, others_may_be_allowed) for part in schema]
    if not isinstance(schema, dict):
        return schema
    closed = {key: strict(value, others_may_be_allowed) for key, value in schema.items()}
    if isinstance(closed.get("properties"), dict) and closed.get("type") == "object":
        if not (others_may_be_allowed and "additionalProperties" in closed):
            closed["additionalProperties"] = False
    return closed
