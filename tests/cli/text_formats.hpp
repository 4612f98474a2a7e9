// Strict readers for the tool's output in the tests: a JSON parser that
// builds a value tree, a CSV splitter, and an XML well-formedness check with
// the elements it met.
#pragma once

#include <cctype>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace respcore::testing::formats {

struct Json {
  enum Kind { Null, Bool, Number, String, Array, Object } kind = Null;
  bool b = false;
  double num = 0;
  std::string str;
  std::vector<Json> items;
  std::map<std::string, Json> fields;

  const Json& operator[](const std::string& key) const {
    const auto it = fields.find(key);
    if (kind != Object || it == fields.end()) throw std::runtime_error("no field " + key);
    return it->second;
  }
  const Json& operator[](size_t i) const {
    if (kind != Array || i >= items.size()) throw std::runtime_error("no item");
    return items[i];
  }
};

// RFC 8259 grammar; throws std::runtime_error with the offset on any fault,
// including text after the value.
class JsonParser {
 public:
  explicit JsonParser(const std::string& s) : s_(s) {}
  Json parse() {
    Json v = value();
    ws();
    if (p_ != s_.size()) fail("text after the value");
    return v;
  }

 private:
  [[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("JSON: " + what + " at offset " + std::to_string(p_));
  }
  void ws() {
    while (p_ < s_.size() && (s_[p_] == ' ' || s_[p_] == '\n' || s_[p_] == '\r' || s_[p_] == '\t')) ++p_;
  }
  bool eat(char c) {
    ws();
    if (p_ < s_.size() && s_[p_] == c) {
      ++p_;
      return true;
    }
    return false;
  }
  void expect(char c) {
    if (!eat(c)) fail(std::string("expected '") + c + "'");
  }
  bool word(const char* w) {
    const std::string t(w);
    if (s_.compare(p_, t.size(), t) == 0) {
      p_ += t.size();
      return true;
    }
    return false;
  }
  Json value() {
    ws();
    if (p_ >= s_.size()) fail("unexpected end");
    Json v;
    const char c = s_[p_];
    if (c == '{') {
      ++p_;
      v.kind = Json::Object;
      if (eat('}')) return v;
      do {
        ws();
        std::string key = string();
        expect(':');
        if (v.fields.count(key)) fail("duplicate key " + key);
        v.fields[key] = value();
      } while (eat(','));
      expect('}');
    } else if (c == '[') {
      ++p_;
      v.kind = Json::Array;
      if (eat(']')) return v;
      do v.items.push_back(value());
      while (eat(','));
      expect(']');
    } else if (c == '"') {
      v.kind = Json::String;
      v.str = string();
    } else if (word("true")) {
      v.kind = Json::Bool;
      v.b = true;
    } else if (word("false")) {
      v.kind = Json::Bool;
    } else if (word("null")) {
      v.kind = Json::Null;
    } else {
      v.kind = Json::Number;
      v.num = number();
    }
    return v;
  }
  std::string string() {
    if (p_ >= s_.size() || s_[p_] != '"') fail("expected a string");
    ++p_;
    std::string out;
    while (true) {
      if (p_ >= s_.size()) fail("unterminated string");
      const char c = s_[p_++];
      if (c == '"') return out;
      if (static_cast<unsigned char>(c) < 0x20) fail("control character in string");
      if (c != '\\') {
        out.push_back(c);
        continue;
      }
      if (p_ >= s_.size()) fail("bad escape");
      const char e = s_[p_++];
      switch (e) {
        case '"': out.push_back('"'); break;
        case '\\': out.push_back('\\'); break;
        case '/': out.push_back('/'); break;
        case 'b': out.push_back('\b'); break;
        case 'f': out.push_back('\f'); break;
        case 'n': out.push_back('\n'); break;
        case 'r': out.push_back('\r'); break;
        case 't': out.push_back('\t'); break;
        case 'u': {
          if (p_ + 4 > s_.size()) fail("bad \\u escape");
          for (int i = 0; i < 4; ++i) {
            if (!std::isxdigit(static_cast<unsigned char>(s_[p_ + static_cast<size_t>(i)]))) fail("bad \\u escape");
          }
          out.push_back(static_cast<char>(std::strtol(s_.substr(p_, 4).c_str(), nullptr, 16)));
          p_ += 4;
          break;
        }
        default: fail("bad escape");
      }
    }
  }
  double number() {
    const size_t start = p_;
    auto digits = [&] {
      const size_t d = p_;
      while (p_ < s_.size() && std::isdigit(static_cast<unsigned char>(s_[p_]))) ++p_;
      return p_ - d;
    };
    if (p_ < s_.size() && s_[p_] == '-') ++p_;
    if (p_ < s_.size() && s_[p_] == '0') ++p_;
    else if (digits() == 0) fail("bad number");
    if (p_ < s_.size() && s_[p_] == '.') {
      ++p_;
      if (digits() == 0) fail("bad fraction");
    }
    if (p_ < s_.size() && (s_[p_] == 'e' || s_[p_] == 'E')) {
      ++p_;
      if (p_ < s_.size() && (s_[p_] == '+' || s_[p_] == '-')) ++p_;
      if (digits() == 0) fail("bad exponent");
    }
    return std::strtod(s_.substr(start, p_ - start).c_str(), nullptr);
  }

  const std::string& s_;
  size_t p_ = 0;
};

inline Json parse_json(const std::string& s) { return JsonParser(s).parse(); }

// Lines of a CSV text split into fields (quoted fields with "" allowed).
inline std::vector<std::vector<std::string>> parse_csv(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> row;
  std::string field;
  bool quoted = false, in_field = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quoted) {
      if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
        field.push_back('"');
        ++i;
      } else if (c == '"') {
        quoted = false;
      } else {
        field.push_back(c);
      }
    } else if (c == '"' && field.empty()) {
      quoted = in_field = true;
    } else if (c == ',') {
      row.push_back(field);
      field.clear();
    } else if (c == '\n') {
      row.push_back(field);
      rows.push_back(row);
      row.clear();
      field.clear();
    } else {
      field.push_back(c);
      in_field = true;
    }
  }
  if (quoted) throw std::runtime_error("CSV: unterminated quote");
  if (!field.empty() || !row.empty()) throw std::runtime_error("CSV: last line without newline");
  (void)in_field;
  return rows;
}

// XML 1.0 well-formedness of a document without DTD: one root element,
// matching tags, quoted unique attributes, known entities. Returns the
// names of the elements in document order.
struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attrs;
  std::string text;  // character data directly inside, entities decoded
};

inline std::vector<XmlElement> check_xml(const std::string& s) {
  std::vector<XmlElement> out;
  std::vector<size_t> open;  // indices into out
  size_t p = 0;
  auto fail = [&](const std::string& what) {
    throw std::runtime_error("XML: " + what + " at offset " + std::to_string(p));
  };
  auto name_char = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == ':' || c == '.';
  };
  auto decode = [&](const std::string& t) {
    std::string r;
    for (size_t i = 0; i < t.size(); ++i) {
      if (t[i] == '<') fail("'<' in text");
      if (t[i] != '&') {
        r.push_back(t[i]);
        continue;
      }
      const size_t semi = t.find(';', i);
      if (semi == std::string::npos) fail("unterminated entity");
      const std::string ent = t.substr(i + 1, semi - i - 1);
      static const std::map<std::string, char> known = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
      if (known.count(ent)) r.push_back(known.at(ent));
      else if (ent.size() > 1 && ent[0] == '#') r.push_back('?');
      else fail("unknown entity &" + ent + ";");
      i = semi;
    }
    return r;
  };
  bool root_done = false;
  if (s.compare(0, 5, "<?xml") == 0) {
    p = s.find("?>");
    if (p == std::string::npos) fail("unterminated declaration");
    p += 2;
  }
  while (p < s.size()) {
    const size_t lt = s.find('<', p);
    const std::string text = s.substr(p, (lt == std::string::npos ? s.size() : lt) - p);
    if (open.empty()) {
      for (char c : text) {
        if (!std::isspace(static_cast<unsigned char>(c))) fail("text outside the root element");
      }
    } else {
      out[open.back()].text += decode(text);
    }
    if (lt == std::string::npos) break;
    p = lt + 1;
    if (s.compare(p, 3, "!--") == 0) {
      const size_t end = s.find("-->", p);
      if (end == std::string::npos) fail("unterminated comment");
      p = end + 3;
      continue;
    }
    const bool closing = p < s.size() && s[p] == '/';
    if (closing) ++p;
    const size_t n0 = p;
    while (p < s.size() && name_char(s[p])) ++p;
    const std::string name = s.substr(n0, p - n0);
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0]))) fail("bad element name");
    if (closing) {
      while (p < s.size() && std::isspace(static_cast<unsigned char>(s[p]))) ++p;
      if (p >= s.size() || s[p] != '>') fail("bad closing tag");
      ++p;
      if (open.empty() || out[open.back()].name != name) fail("closing tag </" + name + "> does not match");
      open.pop_back();
      if (open.empty()) root_done = true;
      continue;
    }
    if (root_done && open.empty()) fail("second root element");
    XmlElement e;
    e.name = name;
    bool self_closing = false;
    while (true) {
      const size_t before = p;
      while (p < s.size() && std::isspace(static_cast<unsigned char>(s[p]))) ++p;
      if (p >= s.size()) fail("unterminated tag");
      if (s[p] == '>') {
        ++p;
        break;
      }
      if (s[p] == '/') {
        if (p + 1 >= s.size() || s[p + 1] != '>') fail("bad '/' in tag");
        p += 2;
        self_closing = true;
        break;
      }
      if (p == before) fail("attributes need white space between them");
      const size_t a0 = p;
      while (p < s.size() && name_char(s[p])) ++p;
      const std::string attr = s.substr(a0, p - a0);
      if (attr.empty()) fail("bad attribute");
      if (p >= s.size() || s[p] != '=') fail("attribute without '='");
      ++p;
      if (p >= s.size() || (s[p] != '"' && s[p] != '\'')) fail("unquoted attribute");
      const char q = s[p++];
      const size_t end = s.find(q, p);
      if (end == std::string::npos) fail("unterminated attribute");
      if (e.attrs.count(attr)) fail("duplicate attribute " + attr);
      e.attrs[attr] = decode(s.substr(p, end - p));
      p = end + 1;
    }
    out.push_back(e);
    if (!self_closing) open.push_back(out.size() - 1);
    else if (open.empty()) root_done = true;
  }
  if (!open.empty()) fail("unclosed element <" + out[open.back()].name + ">");
  if (!root_done) fail("no root element");
  return out;
}

}  // namespace respcore::testing::formats
