// Installation data: replace this file for a deployment. The values here are neutral and use reserved
// domains.
#include <array>

#include "support/Strings.h"

namespace orvo {
namespace {

constexpr std::array kRows = std::to_array<StringRow>({
    // The supplier's short company name; it has one row for all languages.
    {1, "Example"},
    // Support notice.
    {105, "\"Bitte wenden Sie sich an Example Support, Fax +49 30 23125 000.\""},
    {10105, "\"Please contact Example Support, fax +44 20 7946 0000.\""},
    {20105, "\"Veuillez contacter Example Support, fax +33 1 99 00 00 00.\""},
    // The host product's name and web address.
    {9002, "Webkarte"},
    {19002, "Web Map"},
    {29002, "Carte Web"},
    {9003, "https://www.example.com/de"},
    {19003, "https://www.example.com/en"},
    {29003, "https://www.example.com/fr"},
    // Company name, street, postal code and town, country, general e-mail address.
    {9101, "Example GmbH"},
    {19101, "Example Ltd."},
    {29101, "Example SARL"},
    {9102, "Musterstraße 1"},
    {19102, "1 Example Street"},
    {29102, "1 rue de l'Exemple"},
    {9103, "12345 Musterstadt"},
    {19103, "12345 Exampletown"},
    {29103, "12345 Exempleville"},
    {9104, "Deutschland"},
    {19104, "Germany"},
    {29104, "Allemagne"},
    {9105, "info@example.com"},
    {19105, "info@example.com"},
    {29105, "info@example.com"},
    // Support: e-mail address, telephone and fax number, web address.
    {9106, "support@example.com"},
    {19106, "support@example.com"},
    {29106, "support@example.com"},
    {9107, "+49 30 23125 000"},
    {19107, "+44 20 7946 0000"},
    {29107, "+33 1 99 00 00 00"},
    {9108, "https://www.example.com/support/de"},
    {19108, "https://www.example.com/support/en"},
    {29108, "https://www.example.com/support/fr"},
    {9201, "https://www.example.com/de"},
    {19201, "https://www.example.com/en"},
    {29201, "https://www.example.com/fr"},
});

}  // namespace

std::span<const StringRow> ContactRows() {
    return kRows;
}

}  // namespace orvo
