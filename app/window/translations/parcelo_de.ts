<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>About</name>
    <message>
        <source>About Parcelo</source>
        <translation>Über Parcelo</translation>
    </message>
    <message>
        <source>&lt;p align=&quot;center&quot;&gt;Turns files into an archive in one gesture.&lt;/p&gt;</source>
        <translation>&lt;p align=&quot;center&quot;&gt;Macht aus Dateien ein Archiv, mit einem Handgriff.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Send Mail</source>
        <translation>&amp;Mail senden</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>&amp;Website besuchen</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>&amp;Kommentar schreiben</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Copyright © 2026 The Parcelo developers
Free software under the MIT License</source>
        <translation>Copyright © 2026 Die Parcelo-Entwickler
Freie Software unter der MIT-Lizenz</translation>
    </message>
    <message>
        <source>Made with %1</source>
        <translation>Verwendet %1</translation>
    </message>
</context>
<context>
    <name>AccessoryView</name>
    <message>
        <source>&amp;Archive type:</source>
        <translation>&amp;Archivtyp:</translation>
    </message>
    <message>
        <source>Archive type</source>
        <translation>Archivtyp</translation>
    </message>
    <message>
        <source>Zip</source>
        <translation>Zip</translation>
    </message>
    <message>
        <source>Zip with extended attributes</source>
        <translation>Zip mit erweiterten Attributen</translation>
    </message>
</context>
<context>
    <name>AdvertTextView</name>
    <message>
        <source>About the maker&apos;s products</source>
        <translation>Über die Produkte des Herstellers</translation>
    </message>
    <message>
        <source>Brought to you by </source>
        <translation>Präsentiert von </translation>
    </message>
    <message>
        <source>Puts your downloads folder in order</source>
        <translation>Bringt Ordnung in den Download-Ordner</translation>
    </message>
    <message>
        <source>Notes that you find again</source>
        <translation>Notizen, die man wiederfindet</translation>
    </message>
    <message>
        <source>Frames and resizes pictures in one go</source>
        <translation>Rahmt und skaliert Bilder in einem Zug</translation>
    </message>
    <message>
        <source>Sends large files without the fuss</source>
        <translation>Verschickt große Dateien ohne Umstände</translation>
    </message>
    <message>
        <source>A calm timer for busy days</source>
        <translation>Ein ruhiger Timer für volle Tage</translation>
    </message>
    <message>
        <source>Weaves your pages into one document</source>
        <translation>Verwebt Ihre Seiten zu einem Dokument</translation>
    </message>
    <message>
        <source>Draws charts from plain tables</source>
        <translation>Zeichnet Diagramme aus einfachen Tabellen</translation>
    </message>
    <message>
        <source>Free and easy zip utility</source>
        <translation>Kostenloses und einfaches Zip-Programm</translation>
    </message>
    <message>
        <source>Ready for Ridgeline: everything at half price</source>
        <translation>Bereit für Ridgeline: alles zum halben Preis</translation>
    </message>
</context>
<context>
    <name>AlertPanel</name>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>„%1“ konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>Die vorhandene Datei „%1“ konnte nicht ersetzt werden</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>AppController</name>
    <message>
        <source>Same as source</source>
        <translation>Wie die Quelle</translation>
    </message>
    <message>
        <source>Email</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>Remove Selected Entry</source>
        <translation>Ausgewählten Eintrag entfernen</translation>
    </message>
    <message>
        <source>Choose a Folder ...</source>
        <translation>Ordner auswählen …</translation>
    </message>
    <message>
        <source>If you enjoy the way Parcelo makes it easy to zip and email files in one step, you will love Sendora.

Sendora combines the drag-and-drop simplicity of Parcelo with the ability to send large files.</source>
        <translation>Wenn Ihnen gefällt, wie einfach Parcelo Dateien in einem Schritt packt und verschickt, werden Sie Sendora lieben.

Sendora verbindet das einfache Ziehen und Ablegen von Parcelo mit dem Versand großer Dateien.</translation>
    </message>
    <message>
        <source>

For a limited time, apply coupon code &apos;KVW5&apos; (write this down!) during checkout to receive a 30%% discount on Sendora.

Hurry! Offer expires Oct 31, 2010.</source>
        <translation>

Nur für kurze Zeit: Mit dem Gutscheincode „KVW5“ (bitte notieren!) erhalten Sie beim Kauf 30%% Rabatt auf Sendora.

Beeilen Sie sich! Das Angebot endet am 31. Oktober 2010.</translation>
    </message>
    <message>
        <source>Sendora Special Offer</source>
        <translation>Sendora-Sonderangebot</translation>
    </message>
    <message>
        <source>Sendora</source>
        <translation>Sendora</translation>
    </message>
    <message>
        <source>Learn More</source>
        <translation>Mehr erfahren</translation>
    </message>
    <message>
        <source>Maybe Next Time</source>
        <translation>Vielleicht nächstes Mal</translation>
    </message>
    <message>
        <source>Don&apos;t Ask Again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <source>Share on Facebook</source>
        <translation>Auf Facebook teilen</translation>
    </message>
    <message>
        <source>As an independent developer, our single greatest challenge is getting the word out.  Please consider taking a minute to share %1 on your Facebook and help spread the word.

Thank you!</source>
        <translation>Als unabhängige Entwickler ist es für uns am schwersten, bekannt zu werden.  Bitte nehmen Sie sich eine Minute Zeit, um %1 auf Facebook zu teilen und weiterzuempfehlen.

Vielen Dank!</translation>
    </message>
    <message>
        <source>Maybe next time</source>
        <translation>Vielleicht nächstes Mal</translation>
    </message>
    <message>
        <source>Don&apos;t ask again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <source>We Need Your Help!</source>
        <translation>Wir brauchen Ihre Hilfe!</translation>
    </message>
    <message>
        <source>As an indie developer, our biggest challenge is getting the word out.  Please take a minute to rate %1 on the App Store and help spread the word.

Thank you!</source>
        <translation>Als unabhängige Entwickler ist es für uns am schwersten, bekannt zu werden.  Bitte nehmen Sie sich eine Minute Zeit, um %1 im App Store zu bewerten und weiterzuempfehlen.

Vielen Dank!</translation>
    </message>
    <message>
        <source>Rate %1</source>
        <translation>%1 bewerten</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>The message could not be made</source>
        <translation>Die Nachricht konnte nicht erstellt werden</translation>
    </message>
    <message>
        <source>No mail program took the archive. You can attach it yourself; it stays until you quit:
%1</source>
        <translation>Kein Mailprogramm hat das Archiv angenommen. Sie können es selbst anhängen; es bleibt, bis Sie das Programm beenden:
%1</translation>
    </message>
    <message>
        <source>Please check the attachment</source>
        <translation>Bitte prüfen Sie den Anhang</translation>
    </message>
    <message>
        <source>Your mail program was asked to attach the archive, but does not tell whether it did. If it is missing, you find it here until you quit:
%1</source>
        <translation>Das Mailprogramm wurde gebeten, das Archiv anzuhängen, meldet aber nicht, ob es das getan hat. Falls es fehlt, finden Sie es bis zum Beenden hier:
%1</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>Das Archiv ist fertig</translation>
    </message>
    <message>
        <source>No file manager could be asked to show it:
%1</source>
        <translation>Kein Dateimanager konnte es zeigen:
%1</translation>
    </message>
    <message>
        <source>There are no such files</source>
        <translation>Diese Dateien gibt es nicht</translation>
    </message>
    <message>
        <source>These cannot be archived:
%1</source>
        <translation>Nicht archiviert werden können:
%1</translation>
    </message>
    <message>
        <source>Not everything can be archived</source>
        <translation>Nicht alles kann archiviert werden</translation>
    </message>
    <message>
        <source>The message may not have been sent yet</source>
        <translation>Die Nachricht ist vielleicht noch nicht gesendet</translation>
    </message>
    <message>
        <source>Its archive is deleted when you quit. To keep it, have it moved to this folder, from which you can attach it again:
%1</source>
        <translation>Ihr Archiv geht beim Beenden verloren. Um es zu behalten, lassen Sie es in diesen Ordner verschieben; von dort können Sie es erneut anhängen:
%1</translation>
    </message>
    <message>
        <source>&amp;Keep and Quit</source>
        <translation>Be&amp;halten und beenden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>&amp;Quit Anyway</source>
        <translation>&amp;Trotzdem beenden</translation>
    </message>
    <message>
        <source>%1. %2.</source>
        <translation>%1. %2.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>… and %1 more</source>
        <translation>… und %1 weitere</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>Nicht alles ist im Archiv</translation>
    </message>
    <message>
        <source>It is made, but these items are missing or not as they were:
%1</source>
        <translation>Es ist erstellt, aber diese Objekte fehlen darin oder sind nicht, wie sie waren:
%1</translation>
    </message>
    <message>
        <source>&amp;Copy List</source>
        <translation>&amp;Liste kopieren</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>Das Archiv konnte nicht erstellt werden</translation>
    </message>
    <message>
        <source>An archive is being made</source>
        <translation>Es wird gerade ein Archiv erstellt</translation>
    </message>
    <message>
        <source>If you quit now, it will not be made. Your files stay as they are.</source>
        <translation>Wenn Sie jetzt beenden, wird es nicht erstellt. Ihre Dateien bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>&amp;Keep Going</source>
        <translation>&amp;Weitermachen</translation>
    </message>
    <message>
        <source>&amp;Stop and Quit</source>
        <translation>&amp;Abbrechen und beenden</translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation>Danach: %1</translation>
    </message>
    <message>
        <source>or press Space to choose, Ctrl+V to paste</source>
        <translation>oder mit der Leertaste auswählen, mit Strg+V einfügen</translation>
    </message>
    <message>
        <source>These are not files on this computer and will be left out:
%1</source>
        <translation>Dies sind keine Dateien auf diesem Computer; sie werden ausgelassen:
%1</translation>
    </message>
    <message>
        <source>Same as source: %1</source>
        <translation>Wie die Quelle: %1</translation>
    </message>
    <message>
        <source>Files still waiting: %1</source>
        <translation>Noch wartende Dateien: %1</translation>
    </message>
    <message>
        <source>They came while another archive was being made, and will not be archived if you quit:
%1</source>
        <translation>Sie kamen, während ein anderes Archiv erstellt wurde. Wenn Sie beenden, werden sie nicht archiviert:
%1</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1.</translation>
    </message>
</context>
<context>
    <name>ArchiveProblem</name>
    <message>
        <source>there is no such type of archive</source>
        <translation>diese Art von Archiv gibt es nicht</translation>
    </message>
    <message>
        <source>this system has no tool for that type (%1)</source>
        <translation>diesem System fehlt das Werkzeug für diese Art (%1)</translation>
    </message>
    <message>
        <source>a tool could not be started (%2)</source>
        <translation>ein Werkzeug konnte nicht gestartet werden (%2)</translation>
    </message>
    <message>
        <source>there is nothing to archive</source>
        <translation>es gibt nichts zu archivieren</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no name to be archived under</source>
        <translation>„%1“ hat keinen Namen, unter dem es ins Archiv könnte</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read (%2)</source>
        <translation>„%1“ kann nicht gelesen werden (%2)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; leads to no file or folder</source>
        <translation>„%1“ führt zu keiner Datei und keinem Ordner</translation>
    </message>
    <message>
        <source>a folder has that name</source>
        <translation>ein Ordner hat diesen Namen</translation>
    </message>
    <message>
        <source>the disk of that folder is read-only</source>
        <translation>das Laufwerk dieses Ordners ist schreibgeschützt</translation>
    </message>
    <message>
        <source>you may not write in that folder</source>
        <translation>Sie dürfen in diesem Ordner nicht schreiben</translation>
    </message>
    <message>
        <source>that folder cannot be used (%2)</source>
        <translation>dieser Ordner ist nicht zu verwenden (%2)</translation>
    </message>
    <message>
        <source>the disk of that folder is full</source>
        <translation>das Laufwerk dieses Ordners ist voll</translation>
    </message>
    <message>
        <source>the system says: %2</source>
        <translation>das System sagt: %2</translation>
    </message>
    <message>
        <source>the disk for temporary files is full (%1)</source>
        <translation>das Laufwerk für temporäre Dateien ist voll (%1)</translation>
    </message>
    <message>
        <source>there is no working folder at %1</source>
        <translation>es gibt keinen Arbeitsordner unter %1</translation>
    </message>
    <message>
        <source>a tool failed (%2)</source>
        <translation>ein Werkzeug ist gescheitert (%2)</translation>
    </message>
    <message>
        <source>the tool has made nothing</source>
        <translation>das Werkzeug hat nichts erstellt</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Keine Berechtigung</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner nicht gefunden</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Nicht erlaubt</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>Nicht unterstützt</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Ein-/Ausgabefehler</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>Kein Platz mehr auf dem Laufwerk</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Speicherkontingent überschritten</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Schreibgeschütztes Dateisystem</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Datei zu groß</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Dateiname zu lang</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Kein Ordner</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Ist ein Ordner</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>Datei ist schon da</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Zu viele symbolische Links</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>Datei auf dem Server nicht mehr da</translation>
    </message>
    <message>
        <source>is a FIFO</source>
        <translation>ist eine Pipe</translation>
    </message>
    <message>
        <source>is a socket</source>
        <translation>ist ein Socket</translation>
    </message>
    <message>
        <source>is a device</source>
        <translation>ist ein Gerät</translation>
    </message>
    <message>
        <source>changed while it was read</source>
        <translation>wurde beim Lesen verändert</translation>
    </message>
    <message>
        <source>is stored without some of its attributes</source>
        <translation>ist ohne manche seiner Attribute gespeichert</translation>
    </message>
    <message>
        <source>shrank while it was read</source>
        <translation>wurde beim Lesen kürzer</translation>
    </message>
    <message>
        <source>grew while it was read; stored up to its earlier size</source>
        <translation>wurde beim Lesen länger; bis zur früheren Größe gespeichert</translation>
    </message>
    <message>
        <source>was moved while it was read</source>
        <translation>wurde beim Lesen verschoben</translation>
    </message>
    <message>
        <source>was replaced while its folder was read</source>
        <translation>wurde ersetzt, während sein Ordner gelesen wurde</translation>
    </message>
    <message>
        <source>was replaced by a link while its folder was read</source>
        <translation>wurde durch einen Link ersetzt, während sein Ordner gelesen wurde</translation>
    </message>
    <message>
        <source>is a folder it lies in</source>
        <translation>ist ein Ordner, in dem er selbst liegt</translation>
    </message>
    <message>
        <source>links to nothing; stored as a link</source>
        <translation>Link ins Leere; als Link gespeichert</translation>
    </message>
    <message>
        <source>links in a circle; stored as a link</source>
        <translation>Link im Kreis; als Link gespeichert</translation>
    </message>
    <message>
        <source>links to a folder it lies in; stored as a link</source>
        <translation>Link auf einen Ordner, in dem er liegt; als Link gespeichert</translation>
    </message>
    <message>
        <source>does not tell its size; stored empty</source>
        <translation>nennt seine Größe nicht; leer gespeichert</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>Die vorhandene Datei „%1“ konnte nicht ersetzt werden</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>„%1“ konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the archive would replace &apos;%1&apos;, which is to be in it</source>
        <translation>das Archiv würde „%1“ ersetzen, das selbst hineinsoll</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be the name of an archive</source>
        <translation>„%1“ kann nicht der Name eines Archivs sein</translation>
    </message>
    <message>
        <source>not a file on this computer</source>
        <translation>keine Datei auf diesem Computer</translation>
    </message>
</context>
<context>
    <name>DropView</name>
    <message>
        <source>Drop Files Here</source>
        <translation>Dateien hier ablegen</translation>
    </message>
    <message>
        <source>Drop files and folders here, or press to choose files</source>
        <translation>Legen Sie hier Dateien und Ordner ab oder drücken Sie, um Dateien auszuwählen</translation>
    </message>
</context>
<context>
    <name>EmailWindow</name>
    <message>
        <source>Email Archive</source>
        <translation>Archiv per E-Mail senden</translation>
    </message>
    <message>
        <source>The archive will be attached to a new message.</source>
        <translation>Das Archiv wird an eine neue Nachricht angehängt.</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Archive name</source>
        <translation>Name des Archivs</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;OK</translation>
    </message>
</context>
<context>
    <name>FeedDownload</name>
    <message>
        <source>What the server sends is too large to be a list of versions.</source>
        <translation>Was der Server sendet, ist zu groß für eine Versionsliste.</translation>
    </message>
    <message>
        <source>The server does not answer in time.</source>
        <translation>Der Server antwortet nicht rechtzeitig.</translation>
    </message>
    <message>
        <source>The server answers with error %1.</source>
        <translation>Der Server antwortet mit Fehler %1.</translation>
    </message>
</context>
<context>
    <name>FileChooser</name>
    <message>
        <source>Show &amp;hidden files</source>
        <translation>Ver&amp;borgene Dateien anzeigen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Ch&amp;oose</source>
        <translation>Aus&amp;wählen</translation>
    </message>
    <message>
        <source>Choose Files and Folders</source>
        <translation>Dateien und Ordner auswählen</translation>
    </message>
    <message>
        <source>Files and folders</source>
        <translation>Dateien und Ordner</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>&amp;Pfad:</translation>
    </message>
    <message>
        <source>There is nothing at this path.</source>
        <translation>Unter diesem Pfad gibt es nichts.</translation>
    </message>
    <message>
        <source>%1 items selected</source>
        <translation>%1 Objekte ausgewählt</translation>
    </message>
    <message>
        <source>This folder cannot be read.</source>
        <translation>Dieser Ordner kann nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>FileListView</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Geändert</translation>
    </message>
</context>
<context>
    <name>FolderMenu</name>
    <message>
        <source>Home</source>
        <translation>Persönlicher Ordner</translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Schreibtisch</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Anderer …</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
</context>
<context>
    <name>JobNotice</name>
    <message>
        <source>An archive is being made</source>
        <translation>Ein Archiv wird erstellt</translation>
    </message>
    <message>
        <source>Making an archive</source>
        <translation>Archiv wird erstellt</translation>
    </message>
    <message>
        <source>%1: %2%</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>Das Archiv konnte nicht erstellt werden</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>Das Archiv ist fertig</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>Nicht alles ist im Archiv</translation>
    </message>
    <message>
        <source>Open Parcelo</source>
        <translation>Parcelo öffnen</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>Completed</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>TYPE_MAC</source>
        <translation>Bewahrt auch Resource-Forks und erweiterte Attribute, in einem eigenen Ordner.</translation>
    </message>
    <message>
        <source>TYPE_PC</source>
        <translation>Lässt sich auf jedem Computer öffnen. Rechte, Zeiten und Links bleiben erhalten.</translation>
    </message>
    <message>
        <source>Okay</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;Destination:</source>
        <translation>&amp;Ziel:</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Ziel</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Paste Files</source>
        <translation>Dateien &amp;einfügen</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>Ei&amp;nstellungen …</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>&amp;Minimieren</translation>
    </message>
    <message>
        <source>Parcelo &amp;Help</source>
        <translation>Parcelo-&amp;Hilfe</translation>
    </message>
    <message>
        <source>O&amp;nline Help</source>
        <translation>O&amp;nline-Hilfe</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>&amp;Website besuchen</translation>
    </message>
    <message>
        <source>Visit F&amp;orum</source>
        <translation>&amp;Forum besuchen</translation>
    </message>
    <message>
        <source>&amp;Share on Facebook</source>
        <translation>Auf Facebook &amp;teilen</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>&amp;Kommentar schreiben</translation>
    </message>
    <message>
        <source>Visit Sho&amp;p</source>
        <translation>&amp;Shop besuchen</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>Nach &amp;Updates suchen …</translation>
    </message>
    <message>
        <source>&amp;About Parcelo</source>
        <translation>Ü&amp;ber Parcelo</translation>
    </message>
    <message>
        <source>Ma&amp;ximize</source>
        <translation>Ma&amp;ximieren</translation>
    </message>
    <message>
        <source>&amp;Choose Files and Folders…</source>
        <translation>Dateien und Ordner aus&amp;wählen …</translation>
    </message>
</context>
<context>
    <name>OpenPanel</name>
    <message>
        <source>Choose a Folder</source>
        <translation>Ordner auswählen</translation>
    </message>
</context>
<context>
    <name>Preference</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Com&amp;pression:</source>
        <translation>Kom&amp;pression:</translation>
    </message>
    <message>
        <source>faster</source>
        <translation>schneller</translation>
    </message>
    <message>
        <source>Compression level</source>
        <translation>Kompressionsstufe</translation>
    </message>
    <message>
        <source>smaller</source>
        <translation>kleiner</translation>
    </message>
    <message>
        <source>&amp;Keep the extension in the proposed name</source>
        <translation>&amp;Dateiendung im vorgeschlagenen Namen behalten</translation>
    </message>
    <message>
        <source>&amp;Show the finished archive in the file manager</source>
        <translation>Fertiges Archiv im Datei&amp;manager zeigen</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programm</translation>
    </message>
    <message>
        <source>&amp;Quit after archiving files opened with the icon</source>
        <translation>Nach dem Archivieren per &amp;Symbol geöffneter Dateien beenden</translation>
    </message>
    <message>
        <source>Keep &amp;running when the window is closed</source>
        <translation>Beim Schließen des Fensters weiter&amp;laufen</translation>
    </message>
    <message>
        <source>Check for &amp;updates at start</source>
        <translation>Beim Start nach &amp;Updates suchen</translation>
    </message>
    <message>
        <source>&amp;Hide the line about our other products</source>
        <translation>&amp;Zeile über unsere anderen Produkte ausblenden</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;OK</translation>
    </message>
</context>
<context>
    <name>ProgressText</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>%1 of %2 (%3/s)</source>
        <translation>%1 von %2 (%3/s)</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>Noch wenige Sekunden</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>Noch etwa %1 Sekunden</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Noch etwa eine Minute</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>Noch etwa %1 Minuten</translation>
    </message>
    <message>
        <source>About %1 hours left</source>
        <translation>Noch etwa %1 Stunden</translation>
    </message>
</context>
<context>
    <name>ProgressWindow</name>
    <message>
        <source>Making Archive</source>
        <translation>Archiv wird erstellt</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>QKWindow</name>
    <message>
        <source>Hide Toolbar</source>
        <translation>Symbolleiste ausblenden</translation>
    </message>
    <message>
        <source>Show Toolbar</source>
        <translation>Symbolleiste einblenden</translation>
    </message>
</context>
<context>
    <name>SUUpdater</name>
    <message>
        <source>Updates come with your system&apos;s software.</source>
        <translation>Updates kommen mit der Software Ihres Systems.</translation>
    </message>
    <message>
        <source>You have version %1.</source>
        <translation>Sie haben Version %1.</translation>
    </message>
    <message>
        <source>No address is set at which to look for new versions.</source>
        <translation>Es ist keine Adresse eingestellt, unter der nach neuen Versionen gesucht wird.</translation>
    </message>
    <message>
        <source>The list of versions cannot be read.</source>
        <translation>Die Versionsliste kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>%1 is up to date.</source>
        <translation>%1 ist auf dem neuesten Stand.</translation>
    </message>
    <message>
        <source>You have version %1, and there is none that is newer.</source>
        <translation>Sie haben Version %1, und es gibt keine neuere.</translation>
    </message>
    <message>
        <source>It was not possible to look for new versions.</source>
        <translation>Die Suche nach neuen Versionen war nicht möglich.</translation>
    </message>
</context>
<context>
    <name>SavePanel</name>
    <message>
        <source>Save Archive</source>
        <translation>Archiv speichern</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;bbrechen</translation>
    </message>
    <message>
        <source>&amp;Use “%1”</source>
        <translation>„%1“ &amp;verwenden</translation>
    </message>
    <message>
        <source>This folder cannot be found. Choose another one.</source>
        <translation>Dieser Ordner wurde nicht gefunden. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>You cannot save in this folder. Choose another one.</source>
        <translation>In diesem Ordner können Sie nichts speichern. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>A name cannot contain a slash.</source>
        <translation>Ein Name kann keinen Schrägstrich enthalten.</translation>
    </message>
    <message>
        <source>This cannot be a name.</source>
        <translation>Das kann kein Name sein.</translation>
    </message>
    <message>
        <source>This name is too long.</source>
        <translation>Dieser Name ist zu lang.</translation>
    </message>
    <message>
        <source>There is a folder named “%1”.</source>
        <translation>Es gibt einen Ordner namens „%1“.</translation>
    </message>
    <message>
        <source>“%1” exists and will be replaced (%2, %3).</source>
        <translation>„%1“ ist vorhanden und wird ersetzt (%2, %3).</translation>
    </message>
    <message>
        <source>Names that begin with a dot are hidden.</source>
        <translation>Namen, die mit einem Punkt beginnen, werden ausgeblendet.</translation>
    </message>
    <message>
        <source>Some systems refuse names with “%1”.</source>
        <translation>Manche Systeme lehnen Namen mit „%1“ ab.</translation>
    </message>
    <message>
        <source>Windows refuses this name.</source>
        <translation>Windows lehnt diesen Namen ab.</translation>
    </message>
    <message>
        <source>This name begins or ends with a space.</source>
        <translation>Dieser Name beginnt oder endet mit einem Leerzeichen.</translation>
    </message>
</context>
<context>
    <name>UpdateSheet</name>
    <message>
        <source>Software Update</source>
        <translation>Softwareaktualisierung</translation>
    </message>
    <message>
        <source>An important update of %1 is available.</source>
        <translation>Ein wichtiges Update für %1 ist verfügbar.</translation>
    </message>
    <message>
        <source>A new version of %1 is available.</source>
        <translation>Eine neue Version von %1 ist verfügbar.</translation>
    </message>
    <message>
        <source>%1 %2 can be downloaded; you have %3.</source>
        <translation>%1 %2 kann geladen werden; Sie haben %3.</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Was ist neu</translation>
    </message>
    <message>
        <source>&amp;Not Now</source>
        <translation>&amp;Nicht jetzt</translation>
    </message>
    <message>
        <source>&amp;Open Download Page</source>
        <translation>&amp;Download-Seite öffnen</translation>
    </message>
    <message>
        <source>&amp;What Is New</source>
        <translation>&amp;Was ist neu</translation>
    </message>
</context>
</TS>
