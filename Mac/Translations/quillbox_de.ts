<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AsyncSocket</name>
    <message>
        <source>General CFSocket error</source>
        <comment>AsyncSocketCFSocketError</comment>
        <translation>Allgemeiner CFSocket-Fehler</translation>
    </message>
    <message>
        <source>Connection canceled</source>
        <comment>AsyncSocketCanceledError</comment>
        <translation>Verbindung abgebrochen</translation>
    </message>
    <message>
        <source>Attempt to connect to host timed out</source>
        <comment>AsyncSocketConnectTimeoutError</comment>
        <translation>Zeitüberschreitung beim Verbinden</translation>
    </message>
    <message>
        <source>Read operation reached set maximum length</source>
        <comment>AsyncSocketReadMaxedOutError</comment>
        <translation>Lesevorgang hat die festgelegte Höchstlänge erreicht</translation>
    </message>
    <message>
        <source>Read operation timed out</source>
        <comment>AsyncSocketReadTimeoutError</comment>
        <translation>Zeitüberschreitung beim Lesen</translation>
    </message>
    <message>
        <source>Write operation timed out</source>
        <comment>AsyncSocketWriteTimeoutError</comment>
        <translation>Zeitüberschreitung beim Schreiben</translation>
    </message>
    <message>
        <source>nothing answers at this address and port</source>
        <translation>unter dieser Adresse und diesem Port antwortet nichts</translation>
    </message>
    <message>
        <source>there is no way to this address</source>
        <translation>zu dieser Adresse führt kein Weg</translation>
    </message>
    <message>
        <source>this computer is not on that network</source>
        <translation>dieser Computer ist nicht in diesem Netzwerk</translation>
    </message>
    <message>
        <source>the network connection is down</source>
        <translation>die Netzwerkverbindung ist unterbrochen</translation>
    </message>
    <message>
        <source>the device is switched off</source>
        <translation>das Gerät ist ausgeschaltet</translation>
    </message>
    <message>
        <source>the device does not answer</source>
        <translation>das Gerät antwortet nicht</translation>
    </message>
    <message>
        <source>the device broke the connection off</source>
        <translation>das Gerät hat die Verbindung abgebrochen</translation>
    </message>
    <message>
        <source>the connection was broken off</source>
        <translation>die Verbindung wurde abgebrochen</translation>
    </message>
    <message>
        <source>the device has closed the connection</source>
        <translation>das Gerät hat die Verbindung geschlossen</translation>
    </message>
    <message>
        <source>this connection is not allowed</source>
        <translation>diese Verbindung ist nicht erlaubt</translation>
    </message>
    <message>
        <source>this address cannot be used</source>
        <translation>diese Adresse kann nicht verwendet werden</translation>
    </message>
    <message>
        <source>too many files are open</source>
        <translation>zu viele Dateien sind geöffnet</translation>
    </message>
    <message>
        <source>there is no device of this name or address</source>
        <translation>es gibt kein Gerät mit diesem Namen oder dieser Adresse</translation>
    </message>
    <message>
        <source>this name has no address</source>
        <translation>dieser Name hat keine Adresse</translation>
    </message>
    <message>
        <source>names cannot be looked up at the moment</source>
        <translation>Namen können zurzeit nicht aufgelöst werden</translation>
    </message>
    <message>
        <source>the name could not be looked up</source>
        <translation>der Name konnte nicht aufgelöst werden</translation>
    </message>
    <message>
        <source>the attempt was called off</source>
        <translation>der Versuch wurde abgebrochen</translation>
    </message>
    <message>
        <source>the device did not answer in time</source>
        <translation>das Gerät hat nicht rechtzeitig geantwortet</translation>
    </message>
    <message>
        <source>the device sent more than expected</source>
        <translation>das Gerät hat mehr gesendet als erwartet</translation>
    </message>
    <message>
        <source>the device did not send in time</source>
        <translation>das Gerät hat nicht rechtzeitig gesendet</translation>
    </message>
    <message>
        <source>the device did not take the data in time</source>
        <translation>das Gerät hat die Daten nicht rechtzeitig angenommen</translation>
    </message>
</context>
<context>
    <name>AsyncUdpSocket</name>
    <message>
        <source>General CFSocket error</source>
        <translation>Allgemeiner CFSocket-Fehler</translation>
    </message>
    <message>
        <source>Invalid group and/or address, not matching existing socket(s)</source>
        <translation>Gruppe oder Adresse ungültig, passt nicht zu den vorhandenen Sockets</translation>
    </message>
    <message>
        <source>IPv4 is unavailable due to binding/connecting using IPv6 only</source>
        <translation>IPv4 ist nicht verfügbar, da nur IPv6 verwendet wird</translation>
    </message>
    <message>
        <source>IPv6 is unavailable due to binding/connecting using IPv4 only or is not supported on this platform</source>
        <translation>IPv6 ist nicht verfügbar, da nur IPv4 verwendet wird oder dieses System es nicht unterstützt</translation>
    </message>
    <message>
        <source>Send operation timed out</source>
        <translation>Zeitüberschreitung beim Senden</translation>
    </message>
    <message>
        <source>Receive operation timed out</source>
        <translation>Zeitüberschreitung beim Empfangen</translation>
    </message>
</context>
<context>
    <name>CopyFolder</name>
    <message>
        <source>What exists</source>
        <translation>Was vorhanden ist</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Frage</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Nein</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Ja</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>Yes to &amp;all</source>
        <translation>Ja, &amp;alle</translation>
    </message>
    <message>
        <source>Yes to all</source>
        <translation>Ja, alle</translation>
    </message>
    <message>
        <source>Ends the operation</source>
        <translation>Beendet den Vorgang</translation>
    </message>
    <message>
        <source>Keeps what exists and goes on with the next</source>
        <translation>Behält, was vorhanden ist, und fährt mit dem Nächsten fort</translation>
    </message>
    <message>
        <source>Replaces what exists</source>
        <translation>Ersetzt, was vorhanden ist</translation>
    </message>
    <message>
        <source>Replaces what exists and asks no more</source>
        <translation>Ersetzt, was vorhanden ist, und fragt nicht mehr</translation>
    </message>
</context>
<context>
    <name>CreateFolder</name>
    <message>
        <source>Create Folder</source>
        <translation>Ordner erstellen</translation>
    </message>
    <message>
        <source>&amp;Name of the new folder:</source>
        <translation>&amp;Name des neuen Ordners:</translation>
    </message>
    <message>
        <source>Folder name</source>
        <translation>Ordnername</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>What the new folder is to be called</source>
        <translation>Wie der neue Ordner heißen soll</translation>
    </message>
    <message>
        <source>Makes the folder</source>
        <translation>Legt den Ordner an</translation>
    </message>
    <message>
        <source>Closes this window and changes nothing</source>
        <translation>Schließt dieses Fenster und ändert nichts</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>Create Fo&amp;lder</source>
        <translation>&amp;Ordner erstellen</translation>
    </message>
    <message>
        <source>D&amp;elete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>&amp;Upload</source>
        <translation>Ho&amp;chladen</translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation>He&amp;runterladen</translation>
    </message>
    <message>
        <source>Directory</source>
        <translation>Ordnerpfad</translation>
    </message>
    <message>
        <source>Device folder</source>
        <translation>Ordner auf dem Gerät</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>&amp;Transparency</source>
        <translation>&amp;Transparenz</translation>
    </message>
    <message>
        <source>Transparency</source>
        <translation>Transparenz</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Ctrl+K</source>
        <translation>Ctrl+K</translation>
    </message>
    <message>
        <source>Ctrl+Shift+N</source>
        <translation>Ctrl+Shift+N</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Del</translation>
    </message>
    <message>
        <source>Ctrl+U</source>
        <translation>Ctrl+U</translation>
    </message>
    <message>
        <source>Ctrl+D</source>
        <translation>Ctrl+D</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>&amp;User Guide</source>
        <translation>Benutzer&amp;handbuch</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>&amp;About Quillbox</source>
        <translation>Ü&amp;ber Quillbox</translation>
    </message>
    <message>
        <source>Finds devices and connects to one</source>
        <translation>Sucht Geräte und stellt eine Verbindung zu einem davon her</translation>
    </message>
    <message>
        <source>Goes to the folder above</source>
        <translation>Geht zum übergeordneten Ordner</translation>
    </message>
    <message>
        <source>Makes a new folder in the folder shown</source>
        <translation>Legt im angezeigten Ordner einen neuen Ordner an</translation>
    </message>
    <message>
        <source>Deletes what is selected from the device</source>
        <translation>Löscht das Ausgewählte vom Gerät</translation>
    </message>
    <message>
        <source>Sends files of this computer to the folder shown</source>
        <translation>Sendet Dateien dieses Computers in den angezeigten Ordner</translation>
    </message>
    <message>
        <source>Copies what is selected to this computer</source>
        <translation>Kopiert das Ausgewählte auf diesen Computer</translation>
    </message>
    <message>
        <source>Lets what is behind this window show through: the further left, the more</source>
        <translation>Lässt durchscheinen, was hinter diesem Fenster ist: je weiter links, desto mehr</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Copy &amp;Diagnostics</source>
        <translation>&amp;Diagnosedaten kopieren</translation>
    </message>
    <message>
        <source>Upload &amp;Folder</source>
        <translation>Or&amp;dner hochladen</translation>
    </message>
    <message>
        <source>Ctrl+Shift+U</source>
        <translation>Ctrl+Shift+U</translation>
    </message>
    <message>
        <source>Sort by &amp;Name</source>
        <translation>Nach &amp;Name sortieren</translation>
    </message>
    <message>
        <source>Sort by &amp;Type</source>
        <translation>Nach &amp;Typ sortieren</translation>
    </message>
    <message>
        <source>Sort by &amp;Date Modified</source>
        <translation>Nach Änderungs&amp;datum sortieren</translation>
    </message>
</context>
<context>
    <name>ProgressView</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Current item</source>
        <translation>Aktuelles Element</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>How much of it is done</source>
        <translation>Wie viel davon erledigt ist</translation>
    </message>
    <message>
        <source>Ends the operation</source>
        <translation>Beendet den Vorgang</translation>
    </message>
</context>
<context>
    <name>QAbstractFileIconProvider</name>
    <message>
        <source>Drive</source>
        <translation>Laufwerk</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Shortcut</source>
        <translation>Verknüpfung</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>Quillbox</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>Dis&amp;connect</source>
        <translation>Tr&amp;ennen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Date Modified</source>
        <translation>Änderungsdatum</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>%s file</source>
        <extracomment>The type of a file; its extension stands for %s.</extracomment>
        <translation>%s-Datei</translation>
    </message>
    <message>
        <source>This folder is empty</source>
        <translation>Dieser Ordner ist leer</translation>
    </message>
    <message>
        <source>The folder could not be listed. Press F5 to try again.</source>
        <translation>Der Inhalt des Ordners konnte nicht gelesen werden. F5 liest ihn noch einmal.</translation>
    </message>
    <message>
        <source>Press Connect, then choose your device or type its address.
The device and this computer must be on the same network.</source>
        <translation>Drücken Sie auf „Verbinden“ und wählen Sie dann Ihr Gerät aus oder geben Sie seine Adresse ein.
Das Gerät und dieser Computer müssen im selben Netzwerk sein.</translation>
    </message>
    <message>
        <source>Press the &apos;Connect&apos; button to begin</source>
        <translation>Drücken Sie auf „Verbinden“, um zu beginnen</translation>
    </message>
    <message>
        <source>Searching for &apos;%s&apos;</source>
        <translation>„%s“ wird gesucht</translation>
    </message>
    <message>
        <source>Connected to &apos;%s&apos;</source>
        <translation>Mit „%s“ verbunden</translation>
    </message>
    <message>
        <source>Connection has been closed</source>
        <translation>Die Verbindung wurde geschlossen</translation>
    </message>
    <message>
        <source>Waiting for operation to finish</source>
        <translation>Der laufende Vorgang ist noch nicht beendet</translation>
    </message>
    <message>
        <source>Reading Folder Contents</source>
        <translation>Ordnerinhalt wird gelesen</translation>
    </message>
    <message>
        <source>Browses your device on the network and copies files both ways.</source>
        <translation>Zeigt die Dateien eines Geräts im Netzwerk an und kopiert Dateien in beide Richtungen.</translation>
    </message>
    <message>
        <source>Looking for devices. If yours does not appear, check that it is on the same network, that its file server is on, and that this computer&apos;s firewall lets UDP port 10245 in.</source>
        <translation>Geräte werden gesucht. Falls Ihr Gerät nicht erscheint, prüfen Sie, ob es im selben Netzwerk ist, ob sein Dateiserver eingeschaltet ist und ob die Firewall dieses Computers den UDP-Port 10245 durchlässt.</translation>
    </message>
    <message>
        <source>Devices cannot be looked for at the moment. Check the network connection and press Refresh.</source>
        <translation>Geräte können zurzeit nicht gesucht werden. Prüfen Sie die Netzwerkverbindung und drücken Sie auf „Aktualisieren“.</translation>
    </message>
    <message>
        <source>Devices cannot be looked for at the moment. Check the network connection, choose &quot;Use found device&quot; and press Refresh.</source>
        <translation>Geräte können zurzeit nicht gesucht werden. Prüfen Sie die Netzwerkverbindung, wählen Sie „Gefundenes Gerät verwenden“ und drücken Sie auf „Aktualisieren“.</translation>
    </message>
    <message>
        <source>New devices were found. Press Refresh to see them.</source>
        <translation>Neue Geräte wurden gefunden. „Aktualisieren“ zeigt sie an.</translation>
    </message>
    <message>
        <source>New devices were found. To see them, choose &quot;Use found device&quot; and press Refresh.</source>
        <translation>Neue Geräte wurden gefunden. Um sie zu sehen, wählen Sie „Gefundenes Gerät verwenden“ und drücken Sie auf „Aktualisieren“.</translation>
    </message>
    <message>
        <source>New devices were found</source>
        <translation>Neue Geräte wurden gefunden</translation>
    </message>
    <message>
        <source>No devices were found</source>
        <translation>Es wurden keine Geräte gefunden</translation>
    </message>
    <message>
        <source>Do you wish to try manually entering an IP address?</source>
        <translation>Möchten Sie eine IP-Adresse von Hand eingeben?</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Files</source>
        <extracomment>The kind of files to choose among; their extensions follow in parentheses.</extracomment>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Copy Folder</source>
        <translation>Ordner kopieren</translation>
    </message>
    <message>
        <source>Copy File</source>
        <translation>Datei kopieren</translation>
    </message>
    <message>
        <source>A folder with the name &apos;%s&apos; already exists.</source>
        <translation>Ein Ordner namens „%s“ ist bereits vorhanden.</translation>
    </message>
    <message>
        <source>A file with the name &apos;%s&apos; already exists.</source>
        <translation>Eine Datei namens „%s“ ist bereits vorhanden.</translation>
    </message>
    <message>
        <source>Any files in the destination folder with the same name as those in the source folder will be replaced.  Do you still want to copy the folder?</source>
        <translation>Dateien im Zielordner, die ebenso heißen wie Dateien im Quellordner, werden ersetzt. Möchten Sie den Ordner trotzdem kopieren?</translation>
    </message>
    <message>
        <source>Do you want to replace it?</source>
        <translation>Möchten Sie sie ersetzen?</translation>
    </message>
    <message>
        <source>No files selected</source>
        <translation>Keine Dateien ausgewählt</translation>
    </message>
    <message>
        <source>Please select the files you wish to download</source>
        <translation>Bitte wählen Sie die Dateien aus, die heruntergeladen werden sollen</translation>
    </message>
    <message>
        <source>Choose file download destination folder</source>
        <translation>Zielordner für das Herunterladen auswählen</translation>
    </message>
    <message>
        <source>Downloading to &apos;%s&apos;</source>
        <translation>Herunterladen nach „%s“</translation>
    </message>
    <message>
        <source>Download failed</source>
        <translation>Herunterladen fehlgeschlagen</translation>
    </message>
    <message>
        <source>Path too long</source>
        <translation>Pfad zu lang</translation>
    </message>
    <message>
        <source>Could not open file</source>
        <translation>Datei konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Too many files</source>
        <translation>Zu viele Dateien</translation>
    </message>
    <message>
        <source>Upload files to &apos;%s:/%s&apos;</source>
        <translation>Dateien nach „%s:/%s“ hochladen</translation>
    </message>
    <message>
        <source>Upload a folder to &apos;%s:/%s&apos;</source>
        <translation>Einen Ordner nach „%s:/%s“ hochladen</translation>
    </message>
    <message>
        <source>Uploading files</source>
        <translation>Dateien werden hochgeladen</translation>
    </message>
    <message>
        <source>Upload failed</source>
        <translation>Hochladen fehlgeschlagen</translation>
    </message>
    <message>
        <source>File convert failed</source>
        <translation>Umwandeln der Datei fehlgeschlagen</translation>
    </message>
    <message>
        <source>Not a name for a device</source>
        <translation>Kein gültiger Name für ein Gerät</translation>
    </message>
    <message>
        <source>File drop failed</source>
        <translation>Ablegen der Dateien fehlgeschlagen</translation>
    </message>
    <message>
        <source>This folder is read only.</source>
        <translation>Dieser Ordner ist schreibgeschützt.</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Dateien löschen</translation>
    </message>
    <message>
        <source>Please select the files you wish to delete</source>
        <translation>Bitte wählen Sie die Dateien aus, die gelöscht werden sollen</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Möchten Sie diesen Ordner wirklich aus „%s:/%s“ löschen? Dieser Vorgang kann nicht rückgängig gemacht werden.</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this file from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Möchten Sie diese Datei wirklich aus „%s:/%s“ löschen? Dieser Vorgang kann nicht rückgängig gemacht werden.</translation>
    </message>
    <message>
        <source>Are you sure you want to delete %d files from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Möchten Sie wirklich %d Dateien aus „%s:/%s“ löschen? Dieser Vorgang kann nicht rückgängig gemacht werden.</translation>
    </message>
    <message>
        <source>Deleting files</source>
        <translation>Dateien werden gelöscht</translation>
    </message>
    <message>
        <source>File %d of %d</source>
        <translation>Datei %d von %d</translation>
    </message>
    <message>
        <source>Delete failed</source>
        <translation>Löschen fehlgeschlagen</translation>
    </message>
    <message>
        <source>Creating Folder</source>
        <translation>Ordner wird erstellt</translation>
    </message>
    <message>
        <source>Create Folder Failed</source>
        <translation>Erstellen des Ordners fehlgeschlagen</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is not a valid folder name.</source>
        <translation>„%s“ ist kein gültiger Ordnername.</translation>
    </message>
    <message>
        <source>File already exists</source>
        <translation>Der Name ist bereits vergeben</translation>
    </message>
    <message>
        <source>A file or folder called &apos;%s&apos; already exists.  Please try another name.</source>
        <translation>Eine Datei oder ein Ordner namens „%s“ ist bereits vorhanden. Bitte wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>Couldn&apos;t read file</source>
        <translation>Datei konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Datei zu groß</translation>
    </message>
    <message>
        <source>Receive buffer overflow</source>
        <translation>Die Antwort des Geräts ist zu lang</translation>
    </message>
    <message>
        <source>Device sent more data than announced</source>
        <translation>Das Gerät hat mehr Daten gesendet als angekündigt</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Verbindung abgelehnt</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>Kein Weg zum Gerät</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>Netzwerk nicht erreichbar</translation>
    </message>
    <message>
        <source>Network is down</source>
        <translation>Netzwerk nicht verfügbar</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>Gerät nicht verfügbar</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>Zeitüberschreitung der Verbindung</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>Verbindung von der Gegenstelle zurückgesetzt</translation>
    </message>
    <message>
        <source>Software caused connection abort</source>
        <translation>Verbindung vom System abgebrochen</translation>
    </message>
    <message>
        <source>Broken pipe</source>
        <translation>Verbindung unterbrochen</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Zugriff verweigert</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Vorgang nicht erlaubt</translation>
    </message>
    <message>
        <source>Cannot assign requested address</source>
        <translation>Angeforderte Adresse kann nicht zugewiesen werden</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Ungültiges Argument</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Too many open files in system</source>
        <translation>Zu viele offene Dateien im System</translation>
    </message>
    <message>
        <source>Name or service not known</source>
        <translation>Name oder Dienst unbekannt</translation>
    </message>
    <message>
        <source>No address associated with hostname</source>
        <translation>Keine Adresse zu diesem Namen</translation>
    </message>
    <message>
        <source>Temporary failure in name resolution</source>
        <translation>Namensauflösung vorübergehend gestört</translation>
    </message>
    <message>
        <source>Non-recoverable failure in name resolution</source>
        <translation>Namensauflösung endgültig gescheitert</translation>
    </message>
    <message>
        <source>%s too large to download</source>
        <translation>%s ist zu groß zum Herunterladen</translation>
    </message>
    <message>
        <source>%s - failed to write file</source>
        <translation>%s – Datei konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>Couldn&apos;t open file &apos;%s&apos;</source>
        <translation>Datei „%s“ konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Couldn&apos;t read file &apos;%s&apos;</source>
        <translation>Datei „%s“ konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is empty</source>
        <translation>„%s“ ist leer</translation>
    </message>
    <message>
        <source>&apos;%s&apos; - couldn&apos;t open as an audio file.</source>
        <translation>„%s“ konnte nicht als Audiodatei geöffnet werden.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; - too many channels.</source>
        <translation>„%s“ hat zu viele Kanäle.</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open file</source>
        <translation>%s – Datei konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t read file. Check that it is uncompressed PCM</source>
        <translation>%s – Datei konnte nicht gelesen werden. Prüfen Sie, ob sie unkomprimiertes PCM enthält</translation>
    </message>
    <message>
        <source>%s - Only mono and stereo files are supported</source>
        <translation>%s – Es werden nur Mono- und Stereodateien unterstützt</translation>
    </message>
    <message>
        <source>%s - Only sample rates up to 48000 are supported</source>
        <translation>%s – Es werden nur Abtastraten bis 48000 unterstützt</translation>
    </message>
    <message>
        <source>%s - Only 8 or 16 bit samples are supported</source>
        <translation>%s – Es werden nur Abtastwerte mit 8 oder 16 Bit unterstützt</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open wav file for writing</source>
        <translation>%s – WAV-Datei konnte nicht zum Schreiben geöffnet werden</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open audio file for output</source>
        <translation>%s – Audiodatei konnte nicht zum Schreiben geöffnet werden</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t write wav file</source>
        <translation>%s – WAV-Datei konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>%s - %s</source>
        <extracomment>What something is called, and what went wrong with it.</extracomment>
        <translation>%s – %s</translation>
    </message>
    <message>
        <source>File zero size</source>
        <translation>Datei ist leer</translation>
    </message>
    <message>
        <source>AsyncSocket couldn&apos;t determine IP version of socket</source>
        <translation>AsyncSocket konnte die IP-Version des Sockets nicht ermitteln</translation>
    </message>
    <message>
        <source> file</source>
        <extracomment>The type of a file without an extension; only the English one begins with a blank.</extracomment>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Finds devices and connects to one</source>
        <translation>Sucht Geräte und stellt eine Verbindung zu einem davon her</translation>
    </message>
    <message>
        <source>Ends the connection to the device</source>
        <translation>Beendet die Verbindung zum Gerät</translation>
    </message>
    <message>
        <source>What the folder of the device holds</source>
        <translation>Was der Ordner auf dem Gerät enthält</translation>
    </message>
    <message>
        <source>Diagnostics copied</source>
        <translation>Diagnosedaten kopiert</translation>
    </message>
    <message>
        <source>Paste them where you ask for help. They say which versions and which system you use, and hold the last lines of the log, in which names of devices and files and network addresses may appear.</source>
        <translation>Fügen Sie sie dort ein, wo Sie um Hilfe bitten. Darin stehen die Versionen und das System, die Sie verwenden, und die letzten Zeilen des Protokolls, in denen Namen von Geräten und Dateien sowie Netzwerkadressen vorkommen können.</translation>
    </message>
    <message>
        <source>The user guide cannot be shown</source>
        <translation>Das Benutzerhandbuch lässt sich nicht anzeigen</translation>
    </message>
    <message>
        <source>It was not found. Installing Quillbox again brings it back.</source>
        <translation>Es wurde nicht gefunden. Wird Quillbox erneut installiert, ist es wieder da.</translation>
    </message>
    <message>
        <source>No web browser could be started. The guide is the file &apos;%s&apos;.</source>
        <translation>Es konnte kein Webbrowser gestartet werden. Das Handbuch ist die Datei „%s“.</translation>
    </message>
    <message numerus="yes">
        <source>about %n seconds left</source>
        <translation>
            <numerusform>noch etwa %n Sekunde</numerusform>
            <numerusform>noch etwa %n Sekunden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>about %n minutes left</source>
        <translation>
            <numerusform>noch etwa %n Minute</numerusform>
            <numerusform>noch etwa %n Minuten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>about %n hours left</source>
        <translation>
            <numerusform>noch etwa %n Stunde</numerusform>
            <numerusform>noch etwa %n Stunden</numerusform>
        </translation>
    </message>
    <message>
        <source>%1/s</source>
        <extracomment>A rate: so much in a second.</extracomment>
        <translation>%1/s</translation>
    </message>
    <message>
        <source>a few seconds left</source>
        <translation>noch wenige Sekunden</translation>
    </message>
    <message>
        <source>about a minute left</source>
        <translation>noch etwa eine Minute</translation>
    </message>
    <message>
        <source>about an hour left</source>
        <translation>noch etwa eine Stunde</translation>
    </message>
    <message>
        <source>more than a day left</source>
        <translation>noch mehr als ein Tag</translation>
    </message>
</context>
<context>
    <name>SelectView</name>
    <message>
        <source>Select Device</source>
        <translation>Gerät auswählen</translation>
    </message>
    <message>
        <source>&amp;Use found device</source>
        <translation>&amp;Gefundenes Gerät verwenden</translation>
    </message>
    <message>
        <source>Use found device</source>
        <translation>Gefundenes Gerät verwenden</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Geräte</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Aktualisieren</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>&amp;Enter IP address</source>
        <translation>&amp;IP-Adresse eingeben</translation>
    </message>
    <message>
        <source>Enter IP address</source>
        <translation>IP-Adresse eingeben</translation>
    </message>
    <message>
        <source>Address octet 1</source>
        <translation>Adressteil 1</translation>
    </message>
    <message>
        <source>Address octet 2</source>
        <translation>Adressteil 2</translation>
    </message>
    <message>
        <source>Address octet 3</source>
        <translation>Adressteil 3</translation>
    </message>
    <message>
        <source>Address octet 4</source>
        <translation>Adressteil 4</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Connects to a device of the list</source>
        <translation>Verbindet sich mit einem Gerät der Liste</translation>
    </message>
    <message>
        <source>The devices found on the network</source>
        <translation>Die im Netzwerk gefundenen Geräte</translation>
    </message>
    <message>
        <source>Lists the devices found so far</source>
        <translation>Listet die bisher gefundenen Geräte auf</translation>
    </message>
    <message>
        <source>Connects to a device whose address you know</source>
        <translation>Verbindet sich mit einem Gerät, dessen Adresse Sie kennen</translation>
    </message>
    <message>
        <source>A number from 0 to 255</source>
        <translation>Eine Zahl von 0 bis 255</translation>
    </message>
    <message>
        <source>Opens the user guide</source>
        <translation>Öffnet das Benutzerhandbuch</translation>
    </message>
    <message>
        <source>Connects to the chosen device</source>
        <translation>Verbindet sich mit dem gewählten Gerät</translation>
    </message>
    <message>
        <source>Closes this window and changes nothing</source>
        <translation>Schließt dieses Fenster und ändert nichts</translation>
    </message>
</context>
</TS>
