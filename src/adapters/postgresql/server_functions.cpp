// SPDX-License-Identifier: MIT
#include "adapters/postgresql/server_functions.h"

#include "adapters/postgresql/statement_names.h"
#include "base/text_case.h"

namespace pelmora::postgres {

namespace {

std::string utf8(char32_t character) {
  const auto code = static_cast<unsigned>(character);
  std::string text;
  if (code < 0x800U) {
    text += static_cast<char>(0xC0U | (code >> 6U));
  } else {
    text += static_cast<char>(0xE0U | (code >> 12U));
    text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
  }
  return text + static_cast<char>(0x80U | (code & 0x3FU));
}

// The server's own rules depend on its locale and on the libraries that it was built with; the same
// letters must be equal here and in a file. Letters beyond ASCII are looked for one by one, which
// is slow: most texts have none.
std::string smallLetters() {
  constexpr char32_t firstBeyondAscii = 0x80, lastWithTwoBytes = 0x7FF, capitalSharpS = 0x1E9E;
  std::string capitals;
  std::string smalls;
  const auto add = [&](char32_t capital) {
    const char32_t small = smallLetter(capital);
    if (small == capital) return;
    capitals += utf8(capital);
    smalls += small < firstBeyondAscii ? std::string(1, static_cast<char>(small)) : utf8(small);
  };
  for (char32_t c = firstBeyondAscii; c <= lastWithTwoBytes; ++c) add(c);
  add(capitalSharpS);
  return "CREATE OR REPLACE FUNCTION pelmora_small(t text) RETURNS text LANGUAGE sql IMMUTABLE "
         "PARALLEL SAFE "
         "AS $f$ SELECT CASE WHEN octet_length(t) = char_length(t) THEN lower(t COLLATE \"C\") "
         "ELSE translate(lower(t COLLATE \"C\"), " +
         quotedText(capitals) + ", " + quotedText(smalls) + ") END $f$";
}

namespace function {

constexpr const char* numberOfText = R"sql(
CREATE OR REPLACE FUNCTION pelmora_number(t text) RETURNS double precision
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  IF t ~ '^ *[-+]?([0-9]+[.]?[0-9]*|[.][0-9]+)([eE][-+]?[0-9]+)? *$' THEN
    RETURN t::double precision;
  END IF;
  RAISE EXCEPTION 'not a number' USING ERRCODE = 'PE013';
END $f$)sql";

constexpr const char* numberOfJson = R"sql(
CREATE OR REPLACE FUNCTION pelmora_number(v jsonb) RETURNS double precision
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $f$ SELECT pelmora_number(v #>> '{}') $f$)sql";

constexpr const char* wholeNumber = R"sql(
CREATE OR REPLACE FUNCTION pelmora_whole(v double precision) RETURNS bigint
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  IF v <> trunc(v) THEN RAISE EXCEPTION 'not a whole number' USING ERRCODE = 'PE013'; END IF;
  RETURN v::bigint;
END $f$)sql";

// Whole as long as 64 bits hold it, and a real number from there on.
constexpr const char* wholeResult = R"sql(
CREATE OR REPLACE FUNCTION pelmora_whole_result(op text, a numeric, b numeric) RETURNS numeric
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
DECLARE
  r numeric := CASE op WHEN '+' THEN a + b WHEN '-' THEN a - b ELSE a * b END;
  x double precision;
  y double precision;
BEGIN
  IF r BETWEEN -9223372036854775808 AND 9223372036854775807 THEN RETURN r; END IF;
  x := a::text::double precision;
  y := b::text::double precision;
  RETURN (CASE op WHEN '+' THEN x + y WHEN '-' THEN x - y ELSE x * y END)::text::numeric;
END $f$)sql";

// The server refuses a result that is too small for a number; the dialect makes it 0. Where that
// cannot happen its own operator is used.
constexpr const char* timesNearZero = R"sql(
CREATE OR REPLACE FUNCTION pelmora_times_near_zero(a double precision, b double precision)
RETURNS double precision LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  RETURN a * b;
EXCEPTION WHEN numeric_value_out_of_range THEN
  IF ln(abs(a)) + ln(abs(b)) < 0 THEN RETURN 0; END IF;
  RAISE;
END $f$)sql";

constexpr const char* times = R"sql(
CREATE OR REPLACE FUNCTION pelmora_times(a double precision, b double precision) RETURNS double precision
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $f$
  SELECT CASE WHEN a = 0 OR b = 0 OR (abs(a) > 1e-150 AND abs(b) > 1e-150) THEN a * b
              ELSE pelmora_times_near_zero(a, b) END $f$)sql";

constexpr const char* overNearZero = R"sql(
CREATE OR REPLACE FUNCTION pelmora_over_near_zero(a double precision, b double precision)
RETURNS double precision LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  RETURN a / b;
EXCEPTION WHEN numeric_value_out_of_range THEN
  IF ln(abs(a)) - ln(abs(b)) < 0 THEN RETURN 0; END IF;
  RAISE;
END $f$)sql";

constexpr const char* over = R"sql(
CREATE OR REPLACE FUNCTION pelmora_over(a double precision, b double precision) RETURNS double precision
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $f$
  SELECT CASE WHEN a = 0 OR b = 0 OR (abs(a) > 1e-150 AND abs(b) < 1e150) THEN a / b
              ELSE pelmora_over_near_zero(a, b) END $f$)sql";

constexpr const char* power = R"sql(
CREATE OR REPLACE FUNCTION pelmora_power(a double precision, b double precision) RETURNS double precision
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  IF a = 0 AND b < 0 THEN RAISE EXCEPTION 'division by zero' USING ERRCODE = '22012'; END IF;
  IF a < 0 AND b <> trunc(b) THEN
    RAISE EXCEPTION 'no such power' USING ERRCODE = 'PE005';
  END IF;
  RETURN power(a, b);
EXCEPTION WHEN numeric_value_out_of_range THEN
  IF ln(abs(a)) * b < 0 THEN RETURN 0; END IF;
  RAISE;
END $f$)sql";

constexpr const char* textOfNumber = R"sql(
CREATE OR REPLACE FUNCTION pelmora_text(v double precision) RETURNS text
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE SET extra_float_digits = 0 AS
$f$ SELECT CASE WHEN v = 0 THEN '0' ELSE upper(v::text) END $f$)sql";

constexpr const char* textOfJson = R"sql(
CREATE OR REPLACE FUNCTION pelmora_text(v jsonb) RETURNS text
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS
$f$ SELECT CASE WHEN jsonb_typeof(v) = 'number' AND (v #>> '{}') ~ '[.]'
                THEN pelmora_text((v #>> '{}')::double precision) ELSE v #>> '{}' END $f$)sql";

constexpr const char* jsonOfNumber = R"sql(
CREATE OR REPLACE FUNCTION pelmora_json(v double precision) RETURNS jsonb
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS
$f$ SELECT CASE WHEN v = trunc(v) AND abs(v) < 1e18 THEN (v::bigint::text || '.0')::jsonb
                ELSE v::text::jsonb END $f$)sql";

constexpr const char* joined = R"sql(
CREATE OR REPLACE FUNCTION pelmora_joined(a text, b text) RETURNS text LANGUAGE sql IMMUTABLE PARALLEL SAFE AS
$f$ SELECT CASE WHEN a IS NULL AND b IS NULL THEN NULL
                ELSE coalesce(a, '') || coalesce(b, '') END $f$)sql";

constexpr const char* plus = R"sql(
CREATE OR REPLACE FUNCTION pelmora_plus(a jsonb, b jsonb) RETURNS jsonb
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  IF jsonb_typeof(a) = 'string' AND jsonb_typeof(b) = 'string' THEN
    RETURN to_jsonb((a #>> '{}') || (b #>> '{}'));
  END IF;
  IF (a #>> '{}') ~ '^-?[0-9]+$' AND (b #>> '{}') ~ '^-?[0-9]+$' THEN
    RETURN to_jsonb((a #>> '{}')::numeric + (b #>> '{}')::numeric);
  END IF;
  RETURN pelmora_json(pelmora_number(a) + pelmora_number(b));
END $f$)sql";

// The pattern becomes a regular expression on small letters. Members of a set are written by their
// codes, so that none of them means something else there.
constexpr const char* like = R"sql(
CREATE OR REPLACE FUNCTION pelmora_like(t text, pattern text) RETURNS boolean
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
DECLARE
  small text := pelmora_small(pattern);
  length integer := char_length(small);
  place integer := 1;
  closing integer;
  members text;
  member text;
  last text;
  isNegated boolean;
  expression text := '';
  c text;
BEGIN
  WHILE place <= length LOOP
    c := substr(small, place, 1);
    closing := CASE WHEN c = '[' THEN strpos(substr(small, place + 1), ']') ELSE 0 END;
    IF c = '%' THEN
      expression := expression || '.*';
    ELSIF c = '_' THEN
      expression := expression || '.';
    ELSIF closing > 0 THEN
      members := substr(small, place + 1, closing - 1);
      place := place + closing;
      isNegated := left(members, 1) = '!';
      IF isNegated THEN members := substr(members, 2); END IF;
      c := '';
      WHILE members <> '' LOOP
        member := left(members, 1);
        last := member;
        members := substr(members, 2);
        IF char_length(members) >= 2 AND left(members, 1) = '-' THEN
          last := substr(members, 2, 1);
          members := substr(members, 3);
        END IF;
        IF ascii(member) <= ascii(last) THEN
          c := c || '\U' || lpad(to_hex(ascii(member)), 8, '0') || '-\U' ||
               lpad(to_hex(ascii(last)), 8, '0');
        END IF;
      END LOOP;
      IF c <> '' THEN
        expression := expression || CASE WHEN isNegated THEN '[^' ELSE '[' END || c || ']';
      ELSIF isNegated THEN
        expression := expression || '.';
      ELSE
        RETURN FALSE;
      END IF;
    ELSE
      expression := expression || '\U' || lpad(to_hex(ascii(c)), 8, '0');
    END IF;
    place := place + 1;
  END LOOP;
  RETURN pelmora_small(t) COLLATE "C" ~ ('^(?:' || expression || ')$');
END $f$)sql";

constexpr const char* compare = R"sql(
CREATE OR REPLACE FUNCTION pelmora_compare(a jsonb, b jsonb) RETURNS integer
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
DECLARE
  x text COLLATE "C";
  y text COLLATE "C";
BEGIN
  IF jsonb_typeof(a) <> jsonb_typeof(b) THEN
    RETURN CASE WHEN jsonb_typeof(a) = 'number' THEN -1 ELSE 1 END;
  END IF;
  IF jsonb_typeof(a) = 'number' THEN
    RETURN CASE WHEN a < b THEN -1 WHEN a > b THEN 1 ELSE 0 END;
  END IF;
  x := pelmora_small(a #>> '{}');
  y := pelmora_small(b #>> '{}');
  RETURN CASE WHEN x < y THEN -1 WHEN x > y THEN 1 ELSE 0 END;
END $f$)sql";

constexpr const char* loose = R"sql(
CREATE OR REPLACE FUNCTION pelmora_loose(v jsonb) RETURNS jsonb
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  IF jsonb_typeof(v) = 'number' THEN RETURN v; END IF;
  RETURN pelmora_json(pelmora_number(v));
EXCEPTION WHEN SQLSTATE 'PE013' THEN RETURN v;
END $f$)sql";

constexpr const char* truth = R"sql(
CREATE OR REPLACE FUNCTION pelmora_truth(v jsonb) RETURNS boolean
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $f$
BEGIN
  RETURN pelmora_number(v) <> 0;
EXCEPTION WHEN SQLSTATE 'PE013' THEN RETURN FALSE;
END $f$)sql";

}  // namespace function

}  // namespace

std::vector<std::string> serverFunctions() {
  std::vector<std::string> statements{smallLetters()};
  for (const char* statement :
       {function::numberOfText, function::numberOfJson, function::wholeNumber,
        function::wholeResult, function::timesNearZero, function::times, function::overNearZero,
        function::over, function::power, function::textOfNumber, function::textOfJson,
        function::jsonOfNumber, function::joined, function::plus, function::like, function::compare,
        function::loose, function::truth})
    statements.emplace_back(statement);
  return statements;
}

}  // namespace pelmora::postgres
