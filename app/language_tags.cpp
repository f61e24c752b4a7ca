#include "app/language_tags.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <strings.h>

namespace tervane::app {

namespace {

struct LanguageTag {
    const char* tag;
    LANGID language;
};

// The tags of the languages whose code pages the platform knows, sorted
// without regard to case; where Windows gives one tag two identifiers, the
// lower one.
constexpr LanguageTag kTags[] = {
    {"af", 0x0036},         {"af-ZA", 0x0436},       {"am", 0x005E},
    {"am-ET", 0x045E},      {"ar", 0x0001},          {"ar-AE", 0x3801},
    {"ar-BH", 0x3C01},      {"ar-DZ", 0x1401},       {"ar-EG", 0x0C01},
    {"ar-IQ", 0x0801},      {"ar-JO", 0x2C01},       {"ar-KW", 0x3401},
    {"ar-LB", 0x3001},      {"ar-LY", 0x1001},       {"ar-MA", 0x1801},
    {"ar-OM", 0x2001},      {"ar-QA", 0x4001},       {"ar-SA", 0x0401},
    {"ar-SY", 0x2801},      {"ar-TN", 0x1C01},       {"ar-YE", 0x2401},
    {"arn", 0x007A},        {"arn-CL", 0x047A},      {"as", 0x004D},
    {"as-IN", 0x044D},      {"az", 0x002C},          {"az-Cyrl-AZ", 0x082C},
    {"az-Latn-AZ", 0x042C}, {"ba", 0x006D},          {"ba-RU", 0x046D},
    {"be", 0x0023},         {"be-BY", 0x0423},       {"bg", 0x0002},
    {"bg-BG", 0x0402},      {"bin", 0x0066},         {"bin-NG", 0x0466},
    {"bn", 0x0045},         {"bn-BD", 0x0845},       {"bn-IN", 0x0445},
    {"bo", 0x0051},         {"bo-CN", 0x0451},       {"br", 0x007E},
    {"br-FR", 0x047E},      {"bs-Cyrl-BA", 0x201A},  {"bs-Latn-BA", 0x141A},
    {"ca", 0x0003},         {"ca-ES", 0x0403},       {"ca-ES-valencia", 0x0803},
    {"chr", 0x005C},        {"chr-Cher-US", 0x045C}, {"co", 0x0083},
    {"co-FR", 0x0483},      {"cs", 0x0005},          {"cs-CZ", 0x0405},
    {"cy", 0x0052},         {"cy-GB", 0x0452},       {"da", 0x0006},
    {"da-DK", 0x0406},      {"de", 0x0007},          {"de-AT", 0x0C07},
    {"de-CH", 0x0807},      {"de-DE", 0x0407},       {"de-LI", 0x1407},
    {"de-LU", 0x1007},      {"dsb-DE", 0x082E},      {"dv", 0x0065},
    {"dv-MV", 0x0465},      {"dz-BT", 0x0C51},       {"el", 0x0008},
    {"el-GR", 0x0408},      {"en", 0x0009},          {"en-029", 0x2409},
    {"en-AE", 0x4C09},      {"en-AU", 0x0C09},       {"en-BZ", 0x2809},
    {"en-CA", 0x1009},      {"en-GB", 0x0809},       {"en-HK", 0x3C09},
    {"en-ID", 0x3809},      {"en-IE", 0x1809},       {"en-IN", 0x4009},
    {"en-JM", 0x2009},      {"en-MY", 0x4409},       {"en-NZ", 0x1409},
    {"en-PH", 0x3409},      {"en-SG", 0x4809},       {"en-TT", 0x2C09},
    {"en-US", 0x0409},      {"en-ZA", 0x1C09},       {"en-ZW", 0x3009},
    {"es", 0x000A},         {"es-419", 0x580A},      {"es-AR", 0x2C0A},
    {"es-BO", 0x400A},      {"es-CL", 0x340A},       {"es-CO", 0x240A},
    {"es-CR", 0x140A},      {"es-CU", 0x5C0A},       {"es-DO", 0x1C0A},
    {"es-EC", 0x300A},      {"es-ES", 0x0C0A},       {"es-ES_tradnl", 0x040A},
    {"es-GT", 0x100A},      {"es-HN", 0x480A},       {"es-MX", 0x080A},
    {"es-NI", 0x4C0A},      {"es-PA", 0x180A},       {"es-PE", 0x280A},
    {"es-PR", 0x500A},      {"es-PY", 0x3C0A},       {"es-SV", 0x440A},
    {"es-US", 0x540A},      {"es-UY", 0x380A},       {"es-VE", 0x200A},
    {"et", 0x0025},         {"et-EE", 0x0425},       {"eu", 0x002D},
    {"eu-ES", 0x042D},      {"fa", 0x0029},          {"fa-IR", 0x0429},
    {"ff", 0x0067},         {"ff-Latn-NG", 0x0467},  {"ff-Latn-SN", 0x0867},
    {"fi", 0x000B},         {"fi-FI", 0x040B},       {"fil", 0x0064},
    {"fil-PH", 0x0464},     {"fo", 0x0038},          {"fo-FO", 0x0438},
    {"fr", 0x000C},         {"fr-029", 0x1C0C},      {"fr-BE", 0x080C},
    {"fr-CA", 0x0C0C},      {"fr-CD", 0x240C},       {"fr-CH", 0x100C},
    {"fr-CI", 0x300C},      {"fr-CM", 0x2C0C},       {"fr-FR", 0x040C},
    {"fr-HT", 0x3C0C},      {"fr-LU", 0x140C},       {"fr-MA", 0x380C},
    {"fr-MC", 0x180C},      {"fr-ML", 0x340C},       {"fr-RE", 0x200C},
    {"fr-SN", 0x280C},      {"fy", 0x0062},          {"fy-NL", 0x0462},
    {"ga", 0x003C},         {"ga-IE", 0x083C},       {"gd", 0x0091},
    {"gd-GB", 0x0491},      {"gl", 0x0056},          {"gl-ES", 0x0456},
    {"gn", 0x0074},         {"gn-PY", 0x0474},       {"gsw", 0x0084},
    {"gsw-FR", 0x0484},     {"gu", 0x0047},          {"gu-IN", 0x0447},
    {"ha", 0x0068},         {"ha-Latn-NG", 0x0468},  {"haw", 0x0075},
    {"haw-US", 0x0475},     {"he", 0x000D},          {"he-IL", 0x040D},
    {"hi", 0x0039},         {"hi-IN", 0x0439},       {"hr", 0x001A},
    {"hr-BA", 0x101A},      {"hr-HR", 0x041A},       {"hsb", 0x002E},
    {"hsb-DE", 0x042E},     {"hu", 0x000E},          {"hu-HU", 0x040E},
    {"hy", 0x002B},         {"hy-AM", 0x042B},       {"id", 0x0021},
    {"id-ID", 0x0421},      {"ig", 0x0070},          {"ig-NG", 0x0470},
    {"ii", 0x0078},         {"ii-CN", 0x0478},       {"is", 0x000F},
    {"is-IS", 0x040F},      {"it", 0x0010},          {"it-CH", 0x0810},
    {"it-IT", 0x0410},      {"iu", 0x005D},          {"iu-Cans-CA", 0x045D},
    {"iu-Latn-CA", 0x085D}, {"ja", 0x0011},          {"ja-JP", 0x0411},
    {"ka", 0x0037},         {"ka-GE", 0x0437},       {"kk", 0x003F},
    {"kk-KZ", 0x043F},      {"kl", 0x006F},          {"kl-GL", 0x046F},
    {"km", 0x0053},         {"km-KH", 0x0453},       {"kn", 0x004B},
    {"kn-IN", 0x044B},      {"ko", 0x0012},          {"ko-KR", 0x0412},
    {"kok", 0x0057},        {"kok-IN", 0x0457},      {"kr", 0x0071},
    {"kr-Latn-NG", 0x0471}, {"ks", 0x0060},          {"ks-Arab-IN", 0x0460},
    {"ks-Deva-IN", 0x0860}, {"ku", 0x0092},          {"ku-Arab-IQ", 0x0492},
    {"ky", 0x0040},         {"ky-KG", 0x0440},       {"la", 0x0076},
    {"la-VA", 0x0476},      {"lb", 0x006E},          {"lb-LU", 0x046E},
    {"lo", 0x0054},         {"lo-LA", 0x0454},       {"lt", 0x0027},
    {"lt-LT", 0x0427},      {"lv", 0x0026},          {"lv-LV", 0x0426},
    {"mi", 0x0081},         {"mi-NZ", 0x0481},       {"mk", 0x002F},
    {"mk-MK", 0x042F},      {"ml", 0x004C},          {"ml-IN", 0x044C},
    {"mn", 0x0050},         {"mn-MN", 0x0450},       {"mn-Mong-CN", 0x0850},
    {"mn-Mong-MN", 0x0C50}, {"mni", 0x0058},         {"mni-IN", 0x0458},
    {"moh", 0x007C},        {"moh-CA", 0x047C},      {"mr", 0x004E},
    {"mr-IN", 0x044E},      {"ms", 0x003E},          {"ms-BN", 0x083E},
    {"ms-MY", 0x043E},      {"mt", 0x003A},          {"mt-MT", 0x043A},
    {"my", 0x0055},         {"my-MM", 0x0455},       {"nb", 0x0014},
    {"nb-NO", 0x0414},      {"ne", 0x0061},          {"ne-IN", 0x0861},
    {"ne-NP", 0x0461},      {"nl", 0x0013},          {"nl-BE", 0x0813},
    {"nl-NL", 0x0413},      {"nn-NO", 0x0814},       {"nso", 0x006C},
    {"nso-ZA", 0x046C},     {"oc", 0x0082},          {"oc-FR", 0x0482},
    {"om", 0x0072},         {"om-ET", 0x0472},       {"or", 0x0048},
    {"or-IN", 0x0448},      {"pa", 0x0046},          {"pa-Arab-PK", 0x0846},
    {"pa-IN", 0x0446},      {"pl", 0x0015},          {"pl-PL", 0x0415},
    {"prs", 0x008C},        {"prs-AF", 0x048C},      {"ps", 0x0063},
    {"ps-AF", 0x0463},      {"pt", 0x0016},          {"pt-BR", 0x0416},
    {"pt-PT", 0x0816},      {"quc", 0x0086},         {"quc-Latn-GT", 0x0486},
    {"quz", 0x006B},        {"quz-BO", 0x046B},      {"quz-EC", 0x086B},
    {"quz-PE", 0x0C6B},     {"rm", 0x0017},          {"rm-CH", 0x0417},
    {"ro", 0x0018},         {"ro-MD", 0x0818},       {"ro-RO", 0x0418},
    {"ru", 0x0019},         {"ru-MD", 0x0819},       {"ru-RU", 0x0419},
    {"rw", 0x0087},         {"rw-RW", 0x0487},       {"sa", 0x004F},
    {"sa-IN", 0x044F},      {"sah", 0x0085},         {"sah-RU", 0x0485},
    {"sd", 0x0059},         {"sd-Arab-PK", 0x0859},  {"sd-Deva-IN", 0x0459},
    {"se", 0x003B},         {"se-FI", 0x0C3B},       {"se-NO", 0x043B},
    {"se-SE", 0x083B},      {"si", 0x005B},          {"si-LK", 0x045B},
    {"sk", 0x001B},         {"sk-SK", 0x041B},       {"sl", 0x0024},
    {"sl-SI", 0x0424},      {"sma-NO", 0x183B},      {"sma-SE", 0x1C3B},
    {"smj-NO", 0x103B},     {"smj-SE", 0x143B},      {"smn-FI", 0x243B},
    {"sms-FI", 0x203B},     {"so", 0x0077},          {"so-SO", 0x0477},
    {"sq", 0x001C},         {"sq-AL", 0x041C},       {"sr-Cyrl-BA", 0x1C1A},
    {"sr-Cyrl-CS", 0x0C1A}, {"sr-Cyrl-ME", 0x301A},  {"sr-Cyrl-RS", 0x281A},
    {"sr-Latn-BA", 0x181A}, {"sr-Latn-CS", 0x081A},  {"sr-Latn-ME", 0x2C1A},
    {"sr-Latn-RS", 0x241A}, {"st", 0x0030},          {"st-ZA", 0x0430},
    {"sv", 0x001D},         {"sv-FI", 0x081D},       {"sv-SE", 0x041D},
    {"sw", 0x0041},         {"sw-KE", 0x0441},       {"syr", 0x005A},
    {"syr-SY", 0x045A},     {"ta", 0x0049},          {"ta-IN", 0x0449},
    {"ta-LK", 0x0849},      {"te", 0x004A},          {"te-IN", 0x044A},
    {"tg", 0x0028},         {"tg-Cyrl-TJ", 0x0428},  {"th", 0x001E},
    {"th-TH", 0x041E},      {"ti", 0x0073},          {"ti-ER", 0x0873},
    {"ti-ET", 0x0473},      {"tk", 0x0042},          {"tk-TM", 0x0442},
    {"tn", 0x0032},         {"tn-BW", 0x0832},       {"tn-ZA", 0x0432},
    {"tr", 0x001F},         {"tr-TR", 0x041F},       {"ts", 0x0031},
    {"ts-ZA", 0x0431},      {"tt", 0x0044},          {"tt-RU", 0x0444},
    {"tzm", 0x005F},        {"tzm-Latn-DZ", 0x085F}, {"ug", 0x0080},
    {"ug-CN", 0x0480},      {"uk", 0x0022},          {"uk-UA", 0x0422},
    {"ur", 0x0020},         {"ur-IN", 0x0820},       {"ur-PK", 0x0420},
    {"uz", 0x0043},         {"uz-Cyrl-UZ", 0x0843},  {"uz-Latn-UZ", 0x0443},
    {"ve", 0x0033},         {"ve-ZA", 0x0433},       {"vi", 0x002A},
    {"vi-VN", 0x042A},      {"wo", 0x0088},          {"wo-SN", 0x0488},
    {"xh", 0x0034},         {"xh-ZA", 0x0434},       {"yi", 0x003D},
    {"yi-001", 0x043D},     {"yo", 0x006A},          {"yo-NG", 0x046A},
    {"zh", 0x0004},         {"zh-CN", 0x0804},       {"zh-Hant", 0x7C04},
    {"zh-HK", 0x0C04},      {"zh-MO", 0x1404},       {"zh-SG", 0x1004},
    {"zh-TW", 0x0404},      {"zu", 0x0035},          {"zu-ZA", 0x0435},
};

} // namespace

std::optional<LANGID> ParseLanguage(std::string_view text) {
    if (text.empty())
        return std::nullopt;
    unsigned long value = 0;
    const char* first = text.data();
    const char* last = text.data() + text.size();
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        first += 2;
        base = 16;
    }
    if (first != last && (base == 16 || (*first >= '0' && *first <= '9'))) {
        auto [end, error] = std::from_chars(first, last, value, base);
        if (error != std::errc() || end != last || value > 0xFFFF)
            return std::nullopt;
        return static_cast<LANGID>(value);
    }
    const std::string tag(text);
    auto found = std::lower_bound(std::begin(kTags), std::end(kTags), tag,
                                  [](const LanguageTag& entry, const std::string& key) {
                                      return strcasecmp(entry.tag, key.c_str()) < 0;
                                  });
    if (found == std::end(kTags) || strcasecmp(found->tag, tag.c_str()) != 0)
        return std::nullopt;
    return found->language;
}

} // namespace tervane::app
