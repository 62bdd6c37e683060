#include "platform/gdal/Attributes.h"

#include <cpl_string.h>
#include <ogr_feature.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "platform/RuntimeError.h"

namespace orvo::gdal {
namespace {

enum class State : char { Unset, Null, Set };

template <class Value>
void Put(std::string& bytes, const Value& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void PutBlock(std::string& bytes, const void* data, std::size_t size) {
    Put(bytes, static_cast<std::uint64_t>(size));
    bytes.append(static_cast<const char*>(data), size);
}

void PutField(std::string& bytes, OGRFieldType type, const OGRField& field) {
    const auto list = [&](const auto& values) {
        PutBlock(bytes, values.paList, sizeof(*values.paList) * static_cast<std::size_t>(values.nCount));
    };
    switch (type) {
        case OFTInteger:
        case OFTInteger64:
        case OFTReal:
        case OFTDate:
        case OFTTime:
        case OFTDateTime:
            return Put(bytes, field);
        case OFTString:
            return PutBlock(bytes, field.String, std::strlen(field.String));
        case OFTBinary:
            return PutBlock(bytes, field.Binary.paData, static_cast<std::size_t>(field.Binary.nCount));
        case OFTIntegerList:
            return list(field.IntegerList);
        case OFTInteger64List:
            return list(field.Integer64List);
        case OFTRealList:
            return list(field.RealList);
        case OFTStringList:
            Put(bytes, field.StringList.nCount);
            for (int i = 0; i < field.StringList.nCount; ++i)
                PutBlock(bytes, field.StringList.paList[i], std::strlen(field.StringList.paList[i]));
            return;
        default:
            throw RuntimeError(Fault::TypeMismatch, "a field of a kind that is not supported");
    }
}

class Reader {
  public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}
    std::string_view Rest() const { return rest_; }

    template <class Value>
    Value Take() {
        Value value{};
        std::memcpy(&value, Take(sizeof value).data(), sizeof value);
        return value;
    }
    std::string_view Take(std::size_t size) {
        if (size > rest_.size()) throw RuntimeError(Fault::DeviceIOError, "attributes that end early");
        const std::string_view part = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return part;
    }
    std::string TakeText() { return std::string(Take(Take<std::uint64_t>())); }
    template <class Value>
    std::vector<Value> TakeList() {
        const std::string_view block = Take(Take<std::uint64_t>());
        std::vector<Value> values(block.size() / sizeof(Value));
        if (!values.empty()) std::memcpy(values.data(), block.data(), block.size());
        return values;
    }

  private:
    std::string_view rest_;
};

void TakeField(Reader& reader, int i, OGRFieldType type, OGRFeature& feature) {
    const auto list = [&](const auto& values) {
        feature.SetField(i, static_cast<int>(values.size()), values.data());
    };
    switch (type) {
        case OFTString:
            return feature.SetField(i, reader.TakeText().c_str());
        case OFTBinary:
            return list(reader.TakeList<GByte>());
        case OFTIntegerList:
            return list(reader.TakeList<int>());
        case OFTInteger64List:
            return list(reader.TakeList<GIntBig>());
        case OFTRealList:
            return list(reader.TakeList<double>());
        case OFTStringList: {
            CPLStringList texts;
            for (int left = reader.Take<int>(); left > 0; --left) texts.AddString(reader.TakeText().c_str());
            return feature.SetField(i, texts.List());
        }
        default: {
            const auto field = reader.Take<OGRField>();
            return feature.SetField(i, &field);
        }
    }
}

template <class Values, class Append>
void AppendList(std::string& text, const Values& values, const Append& append) {
    text += '[';
    for (int i = 0; i < values.nCount; ++i) {
        if (i > 0) text += ',';
        append(values.paList[i]);
    }
    text += ']';
}

std::string IsoTime(OGRFieldType type, const OGRField& field) {
    const auto& d = field.Date;
    std::string text;
    if (type != OFTTime) text = CPLSPrintf("%04d-%02d-%02d", d.Year, d.Month, d.Day);
    if (type == OFTDateTime) text += 'T';
    if (type == OFTDate) return text;
    const bool whole = d.Second == std::trunc(d.Second);
    text += CPLSPrintf(whole ? "%02d:%02d:%02.0f" : "%02d:%02d:%06.3f", d.Hour, d.Minute,
                       static_cast<double>(d.Second));
    if (d.TZFlag < 2) return text;
    const int minutes = (d.TZFlag - 100) * 15;
    if (minutes == 0) return text + 'Z';
    return text +
           CPLSPrintf("%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60, std::abs(minutes) % 60);
}

/// JSON stays as it is, digit for digit; between its tokens line breaks become spaces.
void AppendText(std::string& text, const OGRFieldDefn& definition, std::string_view value) {
    if (definition.GetSubType() != OFSTJSON || !IsJson(value)) {
        text += JsonText(value);
        return;
    }
    for (const char c : value) text += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
}

void AppendField(std::string& text, const OGRFeature& feature, int i) {
    const OGRFieldDefn& definition = *feature.GetFieldDefnRef(i);
    const OGRField& field = *feature.GetRawFieldRef(i);
    const auto whole = [&](auto number) { text += std::to_string(number); };
    switch (definition.GetType()) {
        case OFTInteger:
            if (definition.GetSubType() == OFSTBoolean)
                text += field.Integer != 0 ? "true" : "false";
            else
                whole(field.Integer);
            return;
        case OFTInteger64:
            return whole(field.Integer64);
        case OFTReal:
            return AppendJson(text, field.Real);
        case OFTString:
            return AppendText(text, definition, field.String);
        case OFTDate:
        case OFTTime:
        case OFTDateTime:
            text += JsonText(IsoTime(definition.GetType(), field));
            return;
        case OFTIntegerList:
            return AppendList(text, field.IntegerList, whole);
        case OFTInteger64List:
            return AppendList(text, field.Integer64List, whole);
        case OFTRealList:
            return AppendList(text, field.RealList, [&](double number) { AppendJson(text, number); });
        case OFTStringList:
            return AppendList(text, field.StringList, [&](const char* one) { text += JsonText(one); });
        default:
            text += JsonText(feature.GetFieldAsString(i));
    }
}

}  // namespace

std::string WriteAttributes(const OGRFeature& feature) {
    std::string bytes;
    for (int i = 0; i < feature.GetFieldCount(); ++i) {
        const State state = !feature.IsFieldSet(i)   ? State::Unset
                            : feature.IsFieldNull(i) ? State::Null
                                                     : State::Set;
        Put(bytes, state);
        if (state == State::Set)
            PutField(bytes, feature.GetFieldDefnRef(i)->GetType(), *feature.GetRawFieldRef(i));
    }
    return bytes;
}

std::string_view ReadAttributes(std::string_view bytes, OGRFeature& feature) {
    Reader reader(bytes);
    for (int i = 0; i < feature.GetFieldCount(); ++i) {
        const auto state = reader.Take<State>();
        if (state == State::Null) feature.SetFieldNull(i);
        if (state == State::Set) TakeField(reader, i, feature.GetFieldDefnRef(i)->GetType(), feature);
    }
    return reader.Rest();
}

std::string MendTexts(OGRFeature& feature) {
    std::string first;
    const auto note = [&](int i) {
        if (first.empty()) first = ValidUtf8(feature.GetFieldDefnRef(i)->GetNameRef());
    };
    for (int i = 0; i < feature.GetFieldCount(); ++i) {
        const OGRFieldType type = feature.GetFieldDefnRef(i)->GetType();
        if ((type != OFTString && type != OFTStringList) || !feature.IsFieldSetAndNotNull(i)) continue;
        const OGRField& field = *feature.GetRawFieldRef(i);
        if (type == OFTString) {
            const std::string valid = ValidUtf8(field.String);
            if (valid == field.String) continue;
            note(i);
            feature.SetField(i, valid.c_str());
            continue;
        }
        CPLStringList texts;
        bool isValid = true;
        for (int n = 0; n < field.StringList.nCount; ++n) {
            texts.AddString(ValidUtf8(field.StringList.paList[n]).c_str());
            isValid = isValid && std::strcmp(texts[n], field.StringList.paList[n]) == 0;
        }
        if (isValid) continue;
        note(i);
        feature.SetField(i, texts.List());
    }
    return first;
}

std::string JsonMembers(const OGRFeature& feature) {
    std::string text;
    for (int i = 0; i < feature.GetFieldCount(); ++i) {
        if (i > 0) text += ',';
        text += JsonText(feature.GetFieldDefnRef(i)->GetNameRef());
        text += ':';
        if (feature.IsFieldSetAndNotNull(i))
            AppendField(text, feature, i);
        else
            text += "null";
    }
    return text;
}

std::string JsonValue(const OGRFeature& feature, int field) {
    std::string text;
    AppendField(text, feature, field);
    return text;
}

bool IsJson(std::string_view text) {
    constexpr int kDeepest = 100;
    bool tooDeep = false;
    const auto parsed = nlohmann::json::parse(
        text.begin(), text.end(),
        [&](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
            tooDeep = tooDeep || depth > kDeepest;
            return !tooDeep;
        },
        false);
    return !parsed.is_discarded() && !tooDeep;
}

std::string ValidUtf8(std::string_view text) {
    if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return std::string(text);
    using nlohmann::json;
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

std::string JsonText(std::string_view text) {
    std::string json = "\"";
    for (const char c : ValidUtf8(text)) {
        if (c == '"' || c == '\\') json += '\\';
        if (static_cast<unsigned char>(c) < 0x20)
            json += CPLSPrintf("\\u%04x", static_cast<unsigned>(c));
        else
            json += c;
    }
    return json + '"';
}

void AppendJson(std::string& text, double number) {
    if (!std::isfinite(number)) {
        text += "null";
        return;
    }
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

std::string FreeFieldName(const OGRFeatureDefn& fields, const std::string& wanted) {
    std::string name = wanted;
    for (int number = 2; fields.GetFieldIndex(name.c_str()) >= 0; ++number)
        name = wanted + "_" + std::to_string(number);
    return name;
}

}  // namespace orvo::gdal
