<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ambertide::ReleaseNotesView</name>
    <message>
        <source>Release Notes</source>
        <translation>Neuerungen</translation>
    </message>
    <message>
        <source>There are no release notes.</source>
        <translation>Zu dieser Version gibt es keine Hinweise.</translation>
    </message>
</context>
<context>
    <name>ambertide::TimeField</name>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <source>Earlier</source>
        <translation>Früher</translation>
    </message>
</context>
<context>
    <name>ambertide::UpdateFailure</name>
    <message>
        <source>This build of Ambertide cannot check for updates: it was made without the address or the key of an update feed. Update it the way it was installed.</source>
        <translation>Diese Ausgabe von Ambertide kann nicht nach Updates suchen, denn ihr fehlt die Adresse oder der Schlüssel der Update-Quelle. Bitte auf dem Weg aktualisieren, auf dem Ambertide installiert wurde.</translation>
    </message>
    <message>
        <source>The update would have come over a connection that is not secure, so it was not loaded. Download the new version from the Ambertide web page instead.</source>
        <translation>Das Update wäre über eine unsichere Verbindung gekommen und wurde deshalb nicht geladen. Bitte die neue Version stattdessen von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>The update server could not be reached. Check your network connection and try again.</source>
        <translation>Der Update-Server ist nicht erreichbar. Bitte die Netzwerkverbindung prüfen und erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server took too long to answer. Check your network connection and try again.</source>
        <translation>Der Update-Server hat zu lange nicht geantwortet. Bitte die Netzwerkverbindung prüfen und erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server could not answer the request. Try again later.</source>
        <translation>Der Update-Server konnte die Anfrage nicht beantworten. Bitte später erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server sent more than an update can be, so it was not loaded. Try again later.</source>
        <translation>Der Update-Server hat mehr gesendet, als ein Update groß sein kann. Das Update wurde deshalb nicht geladen. Bitte später erneut versuchen.</translation>
    </message>
    <message>
        <source>The download is not as long as it should be. Try again.</source>
        <translation>Die heruntergeladene Datei hat nicht die erwartete Größe. Bitte erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server sent something other than update information. If your network asks you to log in first, do so and try again.</source>
        <translation>Der Update-Server hat etwas anderes als Angaben zu Updates gesendet. Falls das Netzwerk zuerst eine Anmeldung verlangt, bitte anmelden und erneut versuchen.</translation>
    </message>
    <message>
        <source>The update is not signed by the makers of Ambertide, so it was thrown away. Try again later, or download the new version from the Ambertide web page.</source>
        <translation>Das Update ist nicht von den Entwicklern von Ambertide signiert und wurde deshalb verworfen. Bitte später erneut versuchen oder die neue Version von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>The update could not be saved. Make room on your disk and try again.</source>
        <translation>Das Update konnte nicht gespeichert werden. Bitte Platz auf dem Datenträger schaffen und erneut versuchen.</translation>
    </message>
    <message>
        <source>Installing the update takes the rights of an administrator, and they were not given. Ask an administrator of this computer.</source>
        <translation>Die Installation des Updates erfordert Administratorrechte, die nicht erteilt wurden. Bitte an die Administration dieses Computers wenden.</translation>
    </message>
    <message>
        <source>The update could not be installed, so the present version stays. Try again later, or download the new version from the Ambertide web page.</source>
        <translation>Das Update konnte nicht installiert werden, die bisherige Version bleibt erhalten. Bitte später erneut versuchen oder die neue Version von der Webseite von Ambertide herunterladen.</translation>
    </message>
</context>
<context>
    <name>ambertide::UpdateWindow</name>
    <message>
        <source>Software Update</source>
        <translation>Softwareaktualisierung</translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation>Suche nach Updates …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>You&apos;re up to date!</source>
        <translation>Alles auf dem neuesten Stand!</translation>
    </message>
    <message>
        <source>Ambertide %1 is the newest version available.</source>
        <translation>Ambertide %1 ist die neueste verfügbare Version.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>An important update of Ambertide is available!</source>
        <translation>Ein wichtiges Update von Ambertide ist verfügbar!</translation>
    </message>
    <message>
        <source>A new version of Ambertide is available!</source>
        <translation>Eine neue Version von Ambertide ist verfügbar!</translation>
    </message>
    <message>
        <source>Ambertide %1 is now available. You have %2.</source>
        <translation>Ambertide %1 ist jetzt verfügbar. Installiert ist %2.</translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation>Version überspringen</translation>
    </message>
    <message>
        <source>Remind Me Later</source>
        <translation>Später erinnern</translation>
    </message>
    <message>
        <source>Learn More…</source>
        <translation>Mehr erfahren …</translation>
    </message>
    <message>
        <source>Install Update</source>
        <translation>Update installieren</translation>
    </message>
    <message>
        <source>Downloading the update…</source>
        <translation>Update wird heruntergeladen …</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <extracomment>How much has been downloaded, and how much there is; each with its unit.</extracomment>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Ready to install</source>
        <translation>Bereit zur Installation</translation>
    </message>
    <message>
        <source>Ambertide %1 has been downloaded and verified. Installing it takes the password of an administrator.</source>
        <translation>Ambertide %1 wurde heruntergeladen und geprüft. Die Installation erfordert ein Administratorpasswort.</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Jetzt nicht</translation>
    </message>
    <message>
        <source>Install</source>
        <translation>Installieren</translation>
    </message>
    <message>
        <source>Installing the update…</source>
        <translation>Update wird installiert …</translation>
    </message>
    <message>
        <source>Ambertide %1 is installed</source>
        <translation>Ambertide %1 ist installiert</translation>
    </message>
    <message>
        <source>Restart Ambertide to use it.</source>
        <translation>Die neue Version läuft nach einem Neustart von Ambertide.</translation>
    </message>
    <message>
        <source>Quit and start Ambertide to use it.</source>
        <translation>Bitte Ambertide beenden und wieder starten, um die neue Version zu verwenden.</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <source>Restart Ambertide</source>
        <translation>Ambertide neu starten</translation>
    </message>
    <message>
        <source>The update did not succeed</source>
        <translation>Das Update ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
</context>
</TS>
