#include "run/task/task_description.h"

namespace vantor {
namespace {

struct Description {
    std::uint16_t language;
    std::u16string_view text;
};

constexpr std::u16string_view kEnglish =
    u"This task schedules a periodic safety pulse on your system to check DAT efficacy.";
constexpr std::u16string_view kNorwegian =
    u"Denne oppgaven planlegger kjøring av en periodisk sikkerhetskontroll på systemet ditt for å sjekke effektiviteten til DAT.";

/// The first one is used for all languages that are not listed.
constexpr Description kDescriptions[] = {
    {0x0409, kEnglish},
    {0x0809, kEnglish},
    {0x3801, u"تُنظم هذه المهمة فحص أمان دوري على نظامك للتحقق من فعالية DAT."},
    {0x0405,
     u"Tato úloha naplánuje pravidelnou bezpečnostní kontrolu v systému za účelem kontroly účinnosti souborů DAT."},
    {0x0406,
     u"Denne opgave udsender et regelmæssigt testsignal til computeren for at teste effektiviteten af DAT-definitionerne."},
    {0x0407,
     u"Dieser Task führt eine geplante regelmäßige Sicherheitsprüfung zur Sicherstellung der DAT-Effizienz auf Ihrem System aus."},
    {0x0408,
     u"Αυτή η εργασία προγραμματίζει έναν περιοδικό έλεγχο ασφαλείας στο σύστημά σας για να ελέγχει την αποτελεσματικότητα των αρχείων DAT."},
    {0x040A,
     u"Esta tarea programa una comprobación regular de la seguridad en su sistema para comprobar la eficiencia de DAT."},
    {0x080A, u"Esta tarea programa un pulso de seguridad periódico en su sistema para verificar la eficacia de DAT."},
    {0x040B,
     u"Tämä tehtävä asettaa järjestelmään jaksoittain tapahtuvan tietoturvatestin, millä tarkistetaan DAT-tehokkuus."},
    {0x0C0C,
     u"Cette tâche planifie des vérifications périodiques de l'état d'intégrité de votre système afin de tester l'efficacité des fichiers DAT."},
    {0x040C,
     u"Cette tâche planifie une impulsion de sécurité périodique sur votre système pour vérifier l'efficacité de vos fichiers\u00A0DAT."},
    {0x040D, u"משימה זו מתזמנת בדיקת בטיחות תקופתית במערכת שלך כדי לבדוק יעילות DAT."},
    {0x041A,
     u"Ovaj zadatak zakazuje periodičnu provjeru sigurnosti na vašem sustavu kako bi provjerio DAT učinkovitost."},
    {0x040E,
     u"Ez a feladat rendszeres biztonsági impulzust ütemez be a rendszerén, hogy ellenőrizze a DAT hatékonyságát."},
    {0x0410,
     u"Questa attività pianifica un impulso di sicurezza periodico nel sistema per verificare l'efficacia di DAT."},
    {0x0411,
     u"このタスクは、DAT の有効性をチェックするために、お使いのシステムでセーフティ パルスを定期的に実行するようにスケジュールします。"},
    {0x0412, u"이 작업은 DAT 효과를 확인하기 위해 시스템에서 주기적 안전 펄스를 예약합니다."},
    {0x0413,
     u"Deze taak plant een periodiek veiligheidssignaal op uw systeem om de doeltreffendheid van DAT te controleren."},
    {0x0414, kNorwegian},
    {0x0814, kNorwegian},
    {0x0415,
     u"To zadanie planuje okresowe uruchamianie w systemie impulsu bezpieczeństwa, by sprawdzić wydajność plików DAT."},
    {0x0416,
     u"Esta tarefa agenda uma exploração de segurança periódica no sistema para verificar a eficiência do DAT."},
    {0x0816,
     u"Esta tarefa agenda uma verificação de segurança periódica no seu sistema para analisar a eficácia dos ficheiros DAT."},
    {0x0419,
     u"Эта задача планирует периодический импульс безопасности в вашей системе для проверки эффективности DAT."},
    {0x041B,
     u"Prostredníctvom tohto testu sa pravidelne preveruje stav zabezpečenia systému a\u00A0kontroluje sa účinnosť súborov DAT."},
    {0x141A,
     u"Ovaj zadatak zakazuje periodičnu provjeru sigurnosti na vašem sistemu kako bi provjerio DAT efikasnost."},
    {0x041D,
     u"Denna aktivitet schemalägger en periodisk säkerhetspuls på systemet för att kontrollera DAT-effektiviteten."},
    {0x041F, u"Bu görev, DAT etkinliğini denetlemek için sisteminizde düzenli bir güvenlik denetimi planlar."},
    {0x0804, u"此任务会在您的系统上设置定期安全脉冲，对 DAT 功效进行检查。"},
    {0x0404, u"此工作在您的系統上排定定期安全脈衝測試以檢查 DAT 效能。"},
};

} // namespace

std::u16string_view TaskDescription(std::uint16_t language)
{
    for (const Description& description : kDescriptions) {
        if (description.language == language) {
            return description.text;
        }
    }
    return kDescriptions[0].text;
}

} // namespace vantor
