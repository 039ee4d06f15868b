<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>ambertide::AboutView</name>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Nach Updates suchen …</translation>
    </message>
    <message>
        <source>Web page</source>
        <translation>Webseite</translation>
    </message>
    <message>
        <source>A simple solution to controling your display color temperature.</source>
        <translation>Die einfache Art, die Farbtemperatur des Bildschirms zu steuern.</translation>
    </message>
</context>
<context>
    <name>ambertide::ActionSearch</name>
    <message>
        <source>warmest</source>
        <extracomment>What people type to find a temperature: words in lower case, separated by spaces, as many as the language has.</extracomment>
        <translation>wärmste wärmsten wärmstes</translation>
    </message>
    <message>
        <source>warm</source>
        <translation>warm warmes</translation>
    </message>
    <message>
        <source>candle candles candlelight</source>
        <translation>kerze kerzen kerzenlicht kerzenschein</translation>
    </message>
    <message>
        <source>tungsten incandescent</source>
        <translation>glühlampe glühbirne glühlicht wolfram</translation>
    </message>
    <message>
        <source>halogen</source>
        <translation>halogen halogenlampe halogenlicht</translation>
    </message>
    <message>
        <source>fluorescent flourescent florescent flurescent fluorecent</source>
        <translation>leuchtstofflampe leuchtstoffröhre neonröhre neonlicht</translation>
    </message>
    <message>
        <source>sunlight sunshine</source>
        <translation>sonnenlicht sonnenschein</translation>
    </message>
    <message>
        <source>daylight neutral</source>
        <translation>tageslicht neutral</translation>
    </message>
    <message>
        <source>normal coolest coldest</source>
        <translation>normal kälteste kühlste</translation>
    </message>
    <message>
        <source>cool cold</source>
        <translation>kalt kaltes kühl kühles</translation>
    </message>
    <message>
        <source>ambertide bulb change color colour display displays in k kelvin lamp light make monitor monitors my please screen screens set switch temperature the tint to turn white with</source>
        <extracomment>Words of a request that say nothing about the value, in lower case, separated by spaces.</extracomment>
        <translation>am ambertide auf bildschirm bildschirme bitte das den der die ein einstellen farbe farbtemperatur in kelvin k lampe licht mein meine meinen mit monitor monitore setze setzen stelle stellen temperatur von ändere ändern weiß zu</translation>
    </message>
</context>
<context>
    <name>ambertide::CLIInstaller</name>
    <message>
        <source>Unknown error</source>
        <translation>Unbekannter Fehler</translation>
    </message>
    <message>
        <source>Failed to install the CLI tool: %1</source>
        <translation>Das Befehlszeilenwerkzeug konnte nicht installiert werden: %1</translation>
    </message>
    <message>
        <source>Failed to uninstall the CLI tool: %1</source>
        <translation>Das Befehlszeilenwerkzeug konnte nicht entfernt werden: %1</translation>
    </message>
    <message>
        <source>Could not find CLI executable in app bundle</source>
        <translation>Das Befehlszeilenwerkzeug fehlt im Programmordner von Ambertide</translation>
    </message>
    <message>
        <source>Failed to create installation script</source>
        <translation>Das Installationsskript konnte nicht erstellt werden</translation>
    </message>
</context>
<context>
    <name>ambertide::ColorTemperature</name>
    <message>
        <source>Warmest</source>
        <translation>am wärmsten</translation>
    </message>
    <message>
        <source>Candle</source>
        <translation>Kerze</translation>
    </message>
    <message>
        <source>Tungsten</source>
        <translation>Glühlampe</translation>
    </message>
    <message>
        <source>Halogen</source>
        <translation>Halogen</translation>
    </message>
    <message>
        <source>Flourescent</source>
        <translation>Leuchtstofflampe</translation>
    </message>
    <message>
        <source>Sunlight</source>
        <translation>Sonnenlicht</translation>
    </message>
    <message>
        <source>Daylight</source>
        <translation>Tageslicht</translation>
    </message>
</context>
<context>
    <name>ambertide::CommandLineToolView</name>
    <message>
        <source>Waiting for the system</source>
        <translation>Warten auf das System</translation>
    </message>
    <message>
        <source>Usage:</source>
        <translation>Verwendung:</translation>
    </message>
    <message>
        <source>Command Line Tool</source>
        <translation>Befehlszeilenwerkzeug</translation>
    </message>
    <message>
        <source>Control Ambertide from Terminal</source>
        <translation>Ambertide vom Terminal aus steuern</translation>
    </message>
    <message>
        <source>Uninstall</source>
        <translation>Deinstallieren</translation>
    </message>
    <message>
        <source>Install</source>
        <translation>Installieren</translation>
    </message>
</context>
<context>
    <name>ambertide::GeneralSettingsView</name>
    <message>
        <source>Start at login</source>
        <translation>Beim Anmelden starten</translation>
    </message>
    <message>
        <source>Automatically check for updates</source>
        <translation>Automatisch nach Updates suchen</translation>
    </message>
    <message>
        <source>CLI Installation</source>
        <translation>Installation des Befehlszeilenwerkzeugs</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>ambertide::MenuBarExtra</name>
    <message>
        <source>Settings...</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Nach Updates suchen …</translation>
    </message>
    <message>
        <source>Quit Ambertide</source>
        <translation>Ambertide beenden</translation>
    </message>
    <message>
        <source>This desktop shows no tray icons. Start Ambertide again to open this panel.</source>
        <translation>Dieser Desktop zeigt keine Symbole in der Leiste. Ein neuer Start von Ambertide öffnet dieses Fenster wieder.</translation>
    </message>
</context>
<context>
    <name>ambertide::MenuBarView</name>
    <message>
        <source>Enable Schedule</source>
        <translation>Zeitplan verwenden</translation>
    </message>
    <message>
        <source>Quit Ambertide</source>
        <translation>Ambertide beenden</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Color temperature</source>
        <translation>Farbtemperatur</translation>
    </message>
    <message>
        <source>Normal (Daylight)</source>
        <translation>Normal (Tageslicht)</translation>
    </message>
    <message>
        <source>%1K</source>
        <translation>%1&#xa0;K</translation>
    </message>
    <message>
        <source>%1K (%2)</source>
        <translation>%1&#xa0;K (%2)</translation>
    </message>
    <message>
        <source>Candle</source>
        <translation>Kerze</translation>
    </message>
    <message>
        <source>Tungsten</source>
        <translation>Glühlampe</translation>
    </message>
    <message>
        <source>Halogen</source>
        <translation>Halogen</translation>
    </message>
    <message>
        <source>Fluorescent</source>
        <translation>Leuchtstofflampe</translation>
    </message>
    <message>
        <source>Sunlight</source>
        <translation>Sonnenlicht</translation>
    </message>
    <message>
        <source>Daylight</source>
        <translation>Tageslicht</translation>
    </message>
    <message>
        <source>Nothing is scheduled yet...</source>
        <translation>Noch ist nichts geplant …</translation>
    </message>
    <message>
        <source>This desktop lets no program tint the displays.</source>
        <translation>Dieser Desktop lässt keine Färbung zu.</translation>
    </message>
    <message>
        <source>None of the displays here can be tinted.</source>
        <translation>Keiner der Bildschirme hier lässt sich einfärben.</translation>
    </message>
    <message>
        <source>Night Light is suspended, and so is the tint.</source>
        <translation>Mit dem Nachtlicht ruht auch die Färbung.</translation>
    </message>
</context>
<context>
    <name>ambertide::PrivilegedRunner</name>
    <message>
        <source>the request for administrator rights was cancelled</source>
        <translation>Die Anfrage nach Administratorrechten wurde abgebrochen</translation>
    </message>
    <message>
        <source>administrator rights were not granted</source>
        <translation>Administratorrechte wurden nicht erteilt</translation>
    </message>
    <message>
        <source>nothing in this session can ask for an administrator&apos;s password (no polkit authentication agent is running)</source>
        <translation>In dieser Sitzung kann nichts nach einem Administratorpasswort fragen (es läuft kein Authentifizierungsagent von polkit)</translation>
    </message>
    <message>
        <source>the service that grants administrator rights (polkit) cannot be reached</source>
        <translation>Der Dienst, der Administratorrechte erteilt (polkit), ist nicht erreichbar</translation>
    </message>
    <message>
        <source>the service that grants administrator rights (polkit) gave no answer</source>
        <translation>Der Dienst, der Administratorrechte erteilt (polkit), hat nicht geantwortet</translation>
    </message>
    <message>
        <source>pkexec, which asks for administrator rights, is not set up to do so on this system</source>
        <translation>pkexec, das Administratorrechte anfordert, ist auf diesem System nicht dafür eingerichtet</translation>
    </message>
    <message>
        <source>pkexec, which asks for administrator rights, is not installed</source>
        <translation>pkexec, das Administratorrechte anfordert, ist nicht installiert</translation>
    </message>
    <message>
        <source>the command was broken off (signal %1)</source>
        <translation>Der Befehl wurde abgebrochen (Signal %1)</translation>
    </message>
    <message>
        <source>the request for administrator rights was taken back</source>
        <translation>Die Anfrage nach Administratorrechten wurde zurückgezogen</translation>
    </message>
    <message>
        <source>the command ended with status %1</source>
        <translation>Der Befehl endete mit dem Status %1</translation>
    </message>
    <message>
        <source>pkexec, which asks for administrator rights, could not be started</source>
        <translation>pkexec, das Administratorrechte anfordert, konnte nicht gestartet werden</translation>
    </message>
    <message>
        <source>/usr/local/bin/ambertide is a folder</source>
        <translation>/usr/local/bin/ambertide ist ein Ordner</translation>
    </message>
    <message>
        <source>the tool is not in its place beside Ambertide</source>
        <translation>Das Werkzeug liegt nicht an seinem Platz neben Ambertide</translation>
    </message>
    <message>
        <source>/usr/local/bin could not be changed</source>
        <translation>/usr/local/bin konnte nicht geändert werden</translation>
    </message>
</context>
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
    <name>ambertide::ScheduleEntry</name>
    <message>
        <source>Normal (Daylight)</source>
        <translation>Normal (Tageslicht)</translation>
    </message>
    <message>
        <source>%1K</source>
        <translation>%1&#xa0;K</translation>
    </message>
</context>
<context>
    <name>ambertide::ScheduleEntryEditor</name>
    <message>
        <source>Time</source>
        <translation>Uhrzeit</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Temperature</source>
        <translation>Temperatur</translation>
    </message>
    <message>
        <source>Temperature:</source>
        <translation>Temperatur:</translation>
    </message>
    <message>
        <source>Warm</source>
        <translation>Warm</translation>
    </message>
    <message>
        <source>Neutral</source>
        <translation>Neutral</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Edit Schedule Entry</source>
        <translation>Zeitplaneintrag bearbeiten</translation>
    </message>
</context>
<context>
    <name>ambertide::ScheduleEntryRow</name>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Disabled</source>
        <translation>Inaktiv</translation>
    </message>
    <message>
        <source>Edit %1</source>
        <translation>%1 bearbeiten</translation>
    </message>
    <message>
        <source>Delete %1</source>
        <translation>%1 löschen</translation>
    </message>
    <message>
        <source>disabled</source>
        <translation>inaktiv</translation>
    </message>
    <message>
        <source>active</source>
        <translation>gilt gerade</translation>
    </message>
</context>
<context>
    <name>ambertide::ScheduleSettingsView</name>
    <message>
        <source>Enable Schedule</source>
        <translation>Zeitplan verwenden</translation>
    </message>
    <message>
        <source>No schedule entries. Add one to get started.</source>
        <translation>Noch keine Einträge. Zum Loslegen einen Eintrag hinzufügen.</translation>
    </message>
    <message>
        <source>Add Schedule Entry</source>
        <translation>Eintrag hinzufügen</translation>
    </message>
    <message>
        <source>Schedule</source>
        <translation>Zeitplan</translation>
    </message>
    <message>
        <source>Edit Schedule Entry</source>
        <translation>Zeitplaneintrag bearbeiten</translation>
    </message>
</context>
<context>
    <name>ambertide::SetColorTemperatureShortcut</name>
    <message>
        <source>Set Color Temperature</source>
        <translation>Farbtemperatur einstellen</translation>
    </message>
    <message>
        <source>Set display temperature to %1</source>
        <translation>Bildschirme auf %1 einstellen</translation>
    </message>
    <message>
        <source>Set display temperature to %1 in %2</source>
        <translation>Bildschirme mit %2 auf %1 einstellen</translation>
    </message>
    <message>
        <source>Change %2 temperature to %1</source>
        <translation>Temperatur von %2 auf %1 ändern</translation>
    </message>
</context>
<context>
    <name>ambertide::SettingsView</name>
    <message>
        <source>Ambertide Settings</source>
        <translation>Ambertide-Einstellungen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Schedule</source>
        <translation>Zeitplan</translation>
    </message>
    <message>
        <source>Settings cannot be saved in %1.</source>
        <translation>Die Einstellungen lassen sich nicht in %1 speichern.</translation>
    </message>
    <message>
        <source>If Ambertide is killed, the displays stay tinted: its guardian cannot be started.</source>
        <translation>Wird Ambertide gewaltsam beendet, bleiben die Bildschirme eingefärbt: Der Wächterprozess lässt sich nicht starten.</translation>
    </message>
</context>
<context>
    <name>ambertide::TemperatureSlider</name>
    <message>
        <source>%1 K</source>
        <comment>colour temperature in kelvin, read out by a screen reader</comment>
        <translation>%1&#xa0;K</translation>
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
    <message>
        <source>This is no time of day</source>
        <translation>Das ist keine Uhrzeit</translation>
    </message>
</context>
<context>
    <name>ambertide::TrayIcon</name>
    <message>
        <source>Open %1</source>
        <translation>%1 öffnen</translation>
    </message>
</context>
<context>
    <name>ambertide::UpdateFailure</name>
    <message>
        <source>This build of Ambertide cannot check for updates: it was made without the address or the key of an update feed. Update it the way it was installed.</source>
        <translation>Diese Version von Ambertide kann nicht nach Updates suchen, denn ihr fehlt die Adresse oder der Schlüssel der Update-Quelle. Bitte auf demselben Weg aktualisieren, auf dem Ambertide installiert wurde.</translation>
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
        <source>The update is not signed by the makers of Ambertide, so it was thrown away. Try again later, or download the new version from the Ambertide web page.</source>
        <translation>Das Update ist nicht von den Entwicklern von Ambertide signiert und wurde deshalb verworfen. Bitte später erneut versuchen oder die neue Version von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>The update could not be saved. Make room on your disk and try again.</source>
        <translation>Das Update konnte nicht gespeichert werden. Bitte Platz auf dem Datenträger schaffen und erneut versuchen.</translation>
    </message>
    <message>
        <source>The update could not be installed, so the present version stays. Try again later, or download the new version from the Ambertide web page.</source>
        <translation>Das Update konnte nicht installiert werden, die bisherige Version bleibt erhalten. Bitte später erneut versuchen oder die neue Version von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>The connection to the update server is not secure, so nothing was loaded. Download the new version from the Ambertide web page instead.</source>
        <translation>Die Verbindung zum Update-Server ist unsicher, deshalb wurde nichts geladen. Bitte die neue Version stattdessen von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>The update server sent far more than was expected, so nothing was loaded. Try again later.</source>
        <translation>Der Update-Server hat viel mehr Daten gesendet als erwartet, deshalb wurde nichts geladen. Bitte später erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server sent something other than update information signed by the makers of Ambertide. If your network asks you to log in first, do so and try again.</source>
        <translation>Der Update-Server hat etwas anderes gesendet als Angaben zu Updates, die von den Entwicklern von Ambertide signiert sind. Falls das Netzwerk zuerst eine Anmeldung verlangt, bitte anmelden und erneut versuchen.</translation>
    </message>
    <message>
        <source>The update server sent update information that is out of date, so newer versions may be missing from it. Check the date of this computer and try again later.</source>
        <translation>Die Angaben des Update-Servers sind veraltet, neuere Versionen können darin fehlen. Bitte das Datum dieses Computers prüfen und es später erneut versuchen.</translation>
    </message>
    <message>
        <source>The update is another one than was announced, so it was not installed. Try again later, or download the new version from the Ambertide web page.</source>
        <translation>Das Update ist nicht das angekündigte und wurde deshalb nicht installiert. Bitte später erneut versuchen oder die neue Version von der Webseite von Ambertide herunterladen.</translation>
    </message>
    <message>
        <source>Ambertide was not installed as a package on this computer. Update it the way it was installed.</source>
        <translation>Ambertide wurde auf diesem Computer nicht als Paket installiert. Bitte auf demselben Weg aktualisieren, auf dem es installiert wurde.</translation>
    </message>
    <message>
        <source>Other software is being installed on this computer. Try again when that has ended.</source>
        <translation>Auf diesem Computer wird gerade andere Software installiert. Bitte danach erneut versuchen.</translation>
    </message>
    <message>
        <source>Only an administrator of this computer can install the update, and no administrator&apos;s password was given. If you were not asked for one, nothing in this session can ask (no polkit authentication agent is running, or pkexec is not installed).</source>
        <translation>Nur die Administration dieses Computers kann das Update installieren, und es wurde kein Administratorpasswort eingegeben. Falls danach nicht gefragt wurde, kann in dieser Sitzung nichts danach fragen (es läuft kein Polkit-Agent, oder pkexec ist nicht installiert).</translation>
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
    <message>
        <source>Ambertide %1 has been downloaded and verified. Installing it takes an administrator&apos;s password.</source>
        <translation>Ambertide %1 wurde heruntergeladen und geprüft. Zum Installieren ist ein Administratorpasswort nötig.</translation>
    </message>
    <message>
        <source>Could not check for updates</source>
        <translation>Die Suche nach Updates ist nicht gelungen</translation>
    </message>
</context>
<context>
    <name>ambertide::XdgLoginItem</name>
    <message>
        <source>Tint every display to a color temperature</source>
        <translation>Alle Bildschirme auf eine Farbtemperatur einstellen</translation>
    </message>
</context>
</TS>
