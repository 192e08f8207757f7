<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CaptureSettingsView</name>
    <message>
        <source>Vesko is not running on an X server, so it cannot see other applications&apos; keys and selected text.</source>
        <translation>Vesko läuft nicht auf einem X-Server und kann daher die Tasten und den ausgewählten Text anderer Anwendungen nicht sehen.</translation>
    </message>
    <message>
        <source>The X server lacks the XInput 2 extension, which tells Vesko about Shift presses.</source>
        <translation>Dem X-Server fehlt die Erweiterung XInput 2, durch die Vesko von gedrückten Umschalttasten erfährt.</translation>
    </message>
    <message>
        <source>The X server lacks XTEST, which Vesko uses to copy the selected text.</source>
        <translation>Dem X-Server fehlt XTEST, womit Vesko den ausgewählten Text kopiert.</translation>
    </message>
    <message>
        <source>The X server lacks the X-Resource extension, which tells Vesko which application owns the selected text.</source>
        <translation>Dem X-Server fehlt die Erweiterung X-Resource, durch die Vesko erfährt, welcher Anwendung der ausgewählte Text gehört.</translation>
    </message>
    <message>
        <source>To capture with double Shift and the shortcuts, log in to an X11 (Xorg) session. Here you can still open the panel from the system tray, paste text into the composer and drop files on notes.</source>
        <translation>Um mit doppeltem Umschalt und den Tastenkürzeln zu erfassen, melden Sie sich in einer X11-Sitzung (Xorg) an. Hier können Sie das Panel weiterhin über den Systembereich öffnen, Text in das Eingabefeld einfügen und Dateien auf Notizen ziehen.</translation>
    </message>
    <message>
        <source>Enable the extension in the X server&apos;s configuration and start Vesko again. Until then, paste text into the composer and drop files on notes.</source>
        <translation>Aktivieren Sie die Erweiterung in der Konfiguration des X-Servers und starten Sie Vesko erneut. Bis dahin können Sie Text in das Eingabefeld einfügen und Dateien auf Notizen ziehen.</translation>
    </message>
    <message>
        <source>This Wayland desktop does not let Vesko read the text selected in other applications.</source>
        <translation>Diese Wayland-Arbeitsumgebung lässt Vesko den in anderen Anwendungen ausgewählten Text nicht lesen.</translation>
    </message>
    <message>
        <source>Here you can still bind Vesko&apos;s commands to keys, paste text into the composer and drop files on notes. In an X11 (Xorg) session capture works in full.</source>
        <translation>Hier können Sie Veskos Befehle trotzdem Tasten zuweisen, Text in das Eingabefeld einfügen und Dateien auf Notizen ziehen. In einer X11-Sitzung (Xorg) funktioniert das Erfassen vollständig.</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Vesko holds its shortcuts itself.</source>
        <translation>Vesko verwaltet seine Tastenkürzel selbst.</translation>
    </message>
    <message>
        <source>Your desktop keeps Vesko&apos;s shortcuts; you change them in its settings.</source>
        <translation>Ihre Arbeitsumgebung verwaltet Veskos Tastenkürzel; Sie ändern sie in deren Einstellungen.</translation>
    </message>
    <message>
        <source>This desktop gives Vesko no shortcuts of its own. Bind the commands below to keys in its keyboard settings.</source>
        <translation>Diese Arbeitsumgebung gibt Vesko keine eigenen Tastenkürzel. Weisen Sie die folgenden Befehle in ihren Tastatureinstellungen Tasten zu.</translation>
    </message>
    <message>
        <source>Selected text</source>
        <translation>Ausgewählter Text</translation>
    </message>
    <message>
        <source>Read from the application in front when you capture.</source>
        <translation>Wird beim Erfassen aus der Anwendung im Vordergrund gelesen.</translation>
    </message>
    <message>
        <source>Read as the panel comes forward, so capture with a shortcut that runs “%1”.</source>
        <translation>Wird gelesen, wenn das Panel in den Vordergrund kommt; erfassen Sie daher mit einem Tastenkürzel, das „%1“ ausführt.</translation>
    </message>
    <message>
        <source>This desktop does not let Vesko read it. Paste text into the composer instead.</source>
        <translation>Diese Arbeitsumgebung lässt Vesko ihn nicht lesen. Fügen Sie den Text stattdessen in das Eingabefeld ein.</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Captured notes are filed under the application and window they came from.</source>
        <translation>Erfasste Notizen werden unter der Anwendung und dem Fenster abgelegt, aus denen sie stammen.</translation>
    </message>
    <message>
        <source>The application and window in front are read through the accessibility bus, and captured notes are filed under them.</source>
        <translation>Anwendung und Fenster im Vordergrund werden über den Barrierefreiheits-Bus gelesen, und erfasste Notizen werden darunter abgelegt.</translation>
    </message>
    <message>
        <source>This desktop does not tell which application is in front, so captured notes are filed under “Unknown”.</source>
        <translation>Diese Arbeitsumgebung verrät nicht, welche Anwendung im Vordergrund ist; erfasste Notizen werden daher unter „Unknown“ abgelegt.</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>When an application keeps no selection, Vesko presses Ctrl+Insert for you.</source>
        <translation>Wenn eine Anwendung keine Auswahl bereithält, drückt Vesko für Sie Strg+Einfg.</translation>
    </message>
    <message>
        <source>Vesko cannot press Ctrl+Insert here: select the text before you capture.</source>
        <translation>Vesko kann hier nicht Strg+Einfg drücken: Wählen Sie den Text vor dem Erfassen aus.</translation>
    </message>
    <message>
        <source>Double Shift</source>
        <translation>Doppeltes Umschalt</translation>
    </message>
    <message>
        <source>Vesko sees the Shift key when you turn it on.</source>
        <translation>Vesko erkennt die Umschalttaste, sobald Sie dies einschalten.</translation>
    </message>
    <message>
        <source>Your desktop passes each Shift release to Vesko.</source>
        <translation>Ihre Arbeitsumgebung meldet Vesko jedes Loslassen der Umschalttaste.</translation>
    </message>
    <message>
        <source>Not available on this desktop; use the capture shortcut instead.</source>
        <translation>In dieser Arbeitsumgebung nicht verfügbar; verwenden Sie stattdessen das Tastenkürzel zum Erfassen.</translation>
    </message>
    <message>
        <source>The desktop refused Vesko&apos;s shortcuts. Bind the commands below in its keyboard settings instead.</source>
        <translation>Die Arbeitsumgebung hat Veskos Tastenkürzel abgelehnt. Weisen Sie stattdessen die folgenden Befehle in ihren Tastatureinstellungen zu.</translation>
    </message>
    <message>
        <source>The desktop ended Vesko&apos;s shortcuts. Start Vesko again to bind them, or bind the commands below in its keyboard settings.</source>
        <translation>Die Arbeitsumgebung hat Veskos Tastenkürzel beendet. Starten Sie Vesko neu, um sie zuzuweisen, oder weisen Sie die folgenden Befehle in ihren Tastatureinstellungen zu.</translation>
    </message>
    <message>
        <source>The desktop did not answer when Vesko asked for its shortcuts. Bind the commands below in its keyboard settings instead.</source>
        <translation>Die Arbeitsumgebung hat nicht geantwortet, als Vesko seine Tastenkürzel anforderte. Weisen Sie stattdessen die folgenden Befehle in ihren Tastatureinstellungen zu.</translation>
    </message>
    <message>
        <source>In Settings &gt; Keyboard &gt; Custom Shortcuts (under “View and Customize Shortcuts”), add a shortcut for each command: a name, the command, and the keys.</source>
        <translation>Fügen Sie unter Einstellungen &gt; Tastatur &gt; Eigene Tastenkürzel (unter „Tastenkürzel anzeigen und anpassen“) für jeden Befehl ein Tastenkürzel hinzu: einen Namen, den Befehl und die Tasten.</translation>
    </message>
    <message>
        <source>In System Settings &gt; Keyboard &gt; Shortcuts, choose “Add New” &gt; “Command or Script” for each command and give it keys.</source>
        <translation>Wählen Sie in den Systemeinstellungen &gt; Tastatur &gt; Kurzbefehle für jeden Befehl „Neu hinzufügen“ &gt; „Befehl oder Skript“ und weisen Sie ihm Tasten zu.</translation>
    </message>
    <message>
        <source>Add these lines to your sway configuration (~/.config/sway/config), then reload sway:</source>
        <translation>Fügen Sie diese Zeilen Ihrer sway-Konfiguration (~/.config/sway/config) hinzu und laden Sie sway dann neu:</translation>
    </message>
    <message>
        <source>In your desktop&apos;s keyboard settings, bind keys to each command.</source>
        <translation>Weisen Sie in den Tastatureinstellungen Ihrer Arbeitsumgebung jedem Befehl Tasten zu.</translation>
    </message>
    <message>
        <source>Run the two commands under Double Shift once to have KWin pass each lone Shift release to Vesko.</source>
        <translation>Führen Sie die beiden Befehle unter „Doppeltes Umschalt“ einmal aus, damit KWin jedes einzelne Loslassen von Umschalt an Vesko weitergibt.</translation>
    </message>
    <message>
        <source>Add “bindsym --release Shift_L exec %1” to your sway configuration to have sway pass each lone Shift release to Vesko.</source>
        <translation>Fügen Sie „bindsym --release Shift_L exec %1“ zu Ihrer sway-Konfiguration hinzu, damit sway Vesko jedes einzelne Loslassen der Umschalttaste meldet.</translation>
    </message>
    <message>
        <source>Vesko runs here as an X11 program (XWayland), which cannot read the text selected in other applications.</source>
        <translation>Vesko läuft hier als X11-Programm (XWayland) und kann den in anderen Anwendungen ausgewählten Text nicht lesen.</translation>
    </message>
    <message>
        <source>Start Vesko on Qt&apos;s Wayland platform, with %1 in its environment, to capture on this desktop.</source>
        <translation>Starten Sie Vesko auf der Wayland-Plattform von Qt, mit %1 in seiner Umgebung, um auf dieser Arbeitsumgebung zu erfassen.</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Shows this help.</source>
        <translation>Zeigt diese Hilfe.</translation>
    </message>
    <message>
        <source>Vesko, a keyboard-driven notes panel.</source>
        <translation>Vesko, ein Notizen-Panel für die Tastatur.</translation>
    </message>
    <message>
        <source>Shows the version.</source>
        <translation>Zeigt die Version.</translation>
    </message>
    <message>
        <source>Starts without showing the panel and waits for commands.</source>
        <translation>Startet, ohne das Panel anzuzeigen, und wartet auf Befehle.</translation>
    </message>
    <message>
        <source>What to do (see Commands).</source>
        <translation>Was zu tun ist (siehe Befehle).</translation>
    </message>
    <message>
        <source>--background starts Vesko: it takes no command.</source>
        <translation>--background startet Vesko und nimmt keinen Befehl an.</translation>
    </message>
    <message>
        <source>The section, by its title.</source>
        <translation>Der Abschnitt, nach seinem Titel.</translation>
    </message>
    <message>
        <source>NAME</source>
        <translation>NAME</translation>
    </message>
    <message>
        <source>The project, by its name.</source>
        <translation>Das Projekt, nach seinem Namen.</translation>
    </message>
    <message>
        <source>Lists the done notes too.</source>
        <translation>Listet auch die erledigten Notizen auf.</translation>
    </message>
    <message>
        <source>Prints a JSON array with one object per note.</source>
        <translation>Gibt ein JSON-Array mit einem Objekt pro Notiz aus.</translation>
    </message>
    <message>
        <source>Runs the action &quot;%1&quot; in the running Vesko.</source>
        <translation>Führt die Aktion „%1“ im laufenden Vesko aus.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes no arguments.</source>
        <translation>„%1“ nimmt keine Argumente an.</translation>
    </message>
    <message>
        <source>Adds a note to the active project, or to the project and section given.</source>
        <translation>Fügt eine Notiz zum aktiven Projekt hinzu oder zum angegebenen Projekt und Abschnitt.</translation>
    </message>
    <message>
        <source>The note&apos;s text; &quot;-&quot; reads it from standard input.</source>
        <translation>Der Text der Notiz; „-“ liest ihn aus der Standardeingabe.</translation>
    </message>
    <message>
        <source>TEXT...</source>
        <translation>TEXT...</translation>
    </message>
    <message>
        <source>&quot;add&quot; needs the note&apos;s text, or &quot;-&quot; to read it from standard input.</source>
        <translation>„add“ braucht den Text der Notiz oder „-“, um ihn aus der Standardeingabe zu lesen.</translation>
    </message>
    <message>
        <source>&quot;-&quot; reads the whole note from standard input: give no other text.</source>
        <translation>„-“ liest die ganze Notiz aus der Standardeingabe: Geben Sie keinen weiteren Text an.</translation>
    </message>
    <message>
        <source>The note is blank.</source>
        <translation>Die Notiz ist leer.</translation>
    </message>
    <message>
        <source>Prints the open notes of the active project, or of the project given.</source>
        <translation>Gibt die offenen Notizen des aktiven Projekts aus oder des angegebenen Projekts.</translation>
    </message>
    <message>
        <source>&quot;list&quot; takes no arguments beside its options.</source>
        <translation>„list“ nimmt außer seinen Optionen keine Argumente an.</translation>
    </message>
    <message>
        <source>Prints the notes of the active project that contain the query.</source>
        <translation>Gibt die Notizen des aktiven Projekts aus, die den Suchbegriff enthalten.</translation>
    </message>
    <message>
        <source>What to look for.</source>
        <translation>Wonach gesucht wird.</translation>
    </message>
    <message>
        <source>QUERY...</source>
        <translation>SUCHE...</translation>
    </message>
    <message>
        <source>&quot;search&quot; needs a query.</source>
        <translation>„search“ braucht einen Suchbegriff.</translation>
    </message>
    <message>
        <source>Serves the notes to AI agents over the Model Context Protocol on standard input and output.</source>
        <translation>Stellt die Notizen KI-Agenten über das Model Context Protocol auf Standardein- und -ausgabe bereit.</translation>
    </message>
    <message>
        <source>&quot;mcp&quot; takes no arguments.</source>
        <translation>„mcp“ nimmt keine Argumente an.</translation>
    </message>
    <message>
        <source>Unknown command &quot;%1&quot;.</source>
        <translation>Unbekannter Befehl „%1“.</translation>
    </message>
    <message>
        <source>Run “vesko --help” for the commands.
</source>
        <translation>„vesko --help“ zeigt die Befehle.
</translation>
    </message>
    <message>
        <source>command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>[command]</source>
        <translation>[Befehl]</translation>
    </message>
    <message>
        <source>text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>query</source>
        <translation>Suche</translation>
    </message>
    <message>
        <source>Commands:
  (none)        start Vesko, or show the panel of the one that runs
  toggle        show or hide the panel
  show          show the panel with the composer focused
  hide          hide the panel
  capture       add the selected text of the front window as a note
  quick-add     show the panel to type a note
  copy-list     copy the selected notes, else every visible one, as a list
  shift         one tap of a lone Shift key, for double Shift where the
                desktop runs a command on a Shift release (sway: bindsym
                --release Shift_L exec vesko shift)
  shift-press   a Shift press, where the desktop reports presses too: a
                Shift held too long is then no tap
  quit          quit Vesko
  add TEXT...   add a note (&quot;-&quot; reads it from standard input)
  list          print the notes of the active project
  search QUERY  print the notes that contain QUERY
  mcp           serve the notes to AI agents (Model Context Protocol)

Run &quot;vesko COMMAND --help&quot; for the options of a command.</source>
        <translation>Befehle:
  (keiner)      Vesko starten oder das Panel des laufenden Vesko anzeigen
  toggle        das Panel anzeigen oder ausblenden
  show          das Panel mit dem Eingabefeld im Fokus anzeigen
  hide          das Panel ausblenden
  capture       den ausgewählten Text des vorderen Fensters als Notiz hinzufügen
  quick-add     das Panel zum Eintippen einer Notiz anzeigen
  copy-list     die ausgewählten Notizen, sonst alle sichtbaren, als Liste kopieren
  shift         ein einzelnes Antippen der Umschalttaste, für doppeltes Umschalt, wo
                die Arbeitsumgebung beim Loslassen von Umschalt einen Befehl
                ausführt (sway: bindsym --release Shift_L exec vesko shift)
  shift-press   ein Drücken der Umschalttaste, wo die Arbeitsumgebung auch das
                Drücken meldet: zu lang gehaltenes Umschalt zählt dann nicht
  quit          Vesko beenden
  add TEXT...   eine Notiz hinzufügen („-“ liest sie aus der Standardeingabe)
  list          die Notizen des aktiven Projekts ausgeben
  search SUCHE  die Notizen ausgeben, die SUCHE enthalten
  mcp           die Notizen KI-Agenten bereitstellen (Model Context Protocol)

„vesko BEFEHL --help“ zeigt die Optionen eines Befehls.</translation>
    </message>
</context>
<context>
    <name>DesktopFiles</name>
    <message>
        <source>No Application for “%1”</source>
        <translation>Keine Anwendung für „%1“</translation>
    </message>
    <message>
        <source>No File Manager Found</source>
        <translation>Keine Dateiverwaltung gefunden</translation>
    </message>
</context>
<context>
    <name>HotKeyAction</name>
    <message>
        <source>Show or Hide Vesko</source>
        <translation>Vesko anzeigen oder ausblenden</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Auswahl erfassen</translation>
    </message>
    <message>
        <source>Add a Note</source>
        <translation>Notiz hinzufügen</translation>
    </message>
    <message>
        <source>Copy Notes as List</source>
        <translation>Notizen als Liste kopieren</translation>
    </message>
</context>
<context>
    <name>InstanceClient</name>
    <message>
        <source>Could not read standard input.</source>
        <translation>Die Standardeingabe konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Could not start Vesko (%1): %2.</source>
        <translation>Vesko konnte nicht gestartet werden (%1): %2.</translation>
    </message>
    <message numerus="yes">
        <source>Vesko runs but did not answer within %n seconds.</source>
        <translation>
            <numerusform>Vesko läuft, hat aber nicht innerhalb einer Sekunde geantwortet.</numerusform>
            <numerusform>Vesko läuft, hat aber nicht innerhalb von %n Sekunden geantwortet.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Vesko did not start within %n seconds.</source>
        <translation>
            <numerusform>Vesko ist nicht innerhalb einer Sekunde gestartet.</numerusform>
            <numerusform>Vesko ist nicht innerhalb von %n Sekunden gestartet.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Vesko did not answer within %n seconds.</source>
        <translation>
            <numerusform>Vesko hat nicht innerhalb einer Sekunde geantwortet.</numerusform>
            <numerusform>Vesko hat nicht innerhalb von %n Sekunden geantwortet.</numerusform>
        </translation>
    </message>
    <message>
        <source>Vesko gave an answer that cannot be read.</source>
        <translation>Vesko hat eine Antwort gegeben, die nicht gelesen werden kann.</translation>
    </message>
    <message>
        <source>Vesko did not answer: %1</source>
        <translation>Vesko hat nicht geantwortet: %1</translation>
    </message>
    <message>
        <source>Vesko did not run “%1”: %2</source>
        <translation>Vesko hat „%1“ nicht ausgeführt: %2</translation>
    </message>
    <message>
        <source>The note is blank: nothing was added.</source>
        <translation>Die Notiz ist leer: Es wurde nichts hinzugefügt.</translation>
    </message>
    <message>
        <source>This is not a command for the running Vesko.</source>
        <translation>Dies ist kein Befehl für das laufende Vesko.</translation>
    </message>
    <message numerus="yes">
        <source>Standard input holds more than %n bytes; a note is at most that long.</source>
        <translation>
            <numerusform>Die Standardeingabe enthält mehr als %n Byte; so lang kann eine Notiz höchstens sein.</numerusform>
            <numerusform>Die Standardeingabe enthält mehr als %n Byte; so lang kann eine Notiz höchstens sein.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>KeyCombo</name>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Return</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Backspace</source>
        <translation>Rücktaste</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Pos1</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>PgUp</source>
        <translation>Bild auf</translation>
    </message>
    <message>
        <source>PgDown</source>
        <translation>Bild ab</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Runter</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>Key %1</source>
        <translation>Taste %1</translation>
    </message>
    <message>
        <source>Super</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Ctrl</source>
        <translation>Strg</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Umschalt</translation>
    </message>
</context>
<context>
    <name>LibraryDecoder</name>
    <message>
        <source>an array</source>
        <translation>ein Array</translation>
    </message>
    <message>
        <source>an object</source>
        <translation>ein Objekt</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>eine Zahl</translation>
    </message>
    <message>
        <source>a string</source>
        <translation>eine Zeichenkette</translation>
    </message>
    <message>
        <source>a boolean</source>
        <translation>ein Wahrheitswert</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
    <message>
        <source>a value</source>
        <translation>ein Wert</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is neither “image” nor “file”.</source>
        <translation>%1 ist „%2“, was weder „image“ noch „file“ ist.</translation>
    </message>
    <message>
        <source>%1 is missing.</source>
        <translation>%1 fehlt.</translation>
    </message>
    <message>
        <source>%1 is null.</source>
        <translation>%1 ist null.</translation>
    </message>
    <message>
        <source>%1 should be %2 but is %3.</source>
        <translation>%1 sollte %2 sein, ist aber %3.</translation>
    </message>
    <message>
        <source>a whole number</source>
        <translation>eine ganze Zahl</translation>
    </message>
    <message>
        <source>%1 is not a whole number in range.</source>
        <translation>%1 ist keine ganze Zahl im gültigen Bereich.</translation>
    </message>
    <message>
        <source>a UUID string</source>
        <translation>eine UUID-Zeichenkette</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is not a UUID.</source>
        <translation>%1 ist „%2“, das ist keine UUID.</translation>
    </message>
    <message>
        <source>a date string</source>
        <translation>eine Datumszeichenkette</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is not an ISO-8601 date.</source>
        <translation>%1 ist „%2“, das ist kein Datum nach ISO 8601.</translation>
    </message>
    <message>
        <source>The file is not valid UTF-8 text.</source>
        <translation>Die Datei ist kein gültiger UTF-8-Text.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Die Datei ist leer.</translation>
    </message>
    <message>
        <source>The file is not valid JSON: %1.</source>
        <translation>Die Datei ist kein gültiges JSON: %1.</translation>
    </message>
    <message>
        <source>the document</source>
        <translation>das Dokument</translation>
    </message>
</context>
<context>
    <name>LoginItem</name>
    <message>
        <source>Could not remove “%1”: %2.</source>
        <translation>„%1“ konnte nicht entfernt werden: %2.</translation>
    </message>
</context>
<context>
    <name>MenuBar</name>
    <message>
        <source>Vesko: no open notes in %1</source>
        <translation>Vesko: keine offenen Notizen in %1</translation>
    </message>
    <message>
        <source>Vesko: 1 open note in %1</source>
        <translation>Vesko: 1 offene Notiz in %1</translation>
    </message>
    <message numerus="yes">
        <source>Vesko: %n open notes in %1</source>
        <translation>
            <numerusform>Vesko: %n offene Notiz in %1</numerusform>
            <numerusform>Vesko: %n offene Notizen in %1</numerusform>
        </translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Vesko ausblenden</translation>
    </message>
    <message>
        <source>Show Vesko</source>
        <translation>Vesko anzeigen</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Auswahl erfassen</translation>
    </message>
    <message>
        <source>Add a Note</source>
        <translation>Notiz hinzufügen</translation>
    </message>
    <message>
        <source>Copy All as List</source>
        <translation>Alle als Liste kopieren</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Abschnitt wechseln …</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Projekt wechseln …</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Vesko beenden</translation>
    </message>
    <message>
        <source>No notes in %1</source>
        <translation>Keine Notizen in %1</translation>
    </message>
    <message>
        <source>Section: %1</source>
        <translation>Abschnitt: %1</translation>
    </message>
</context>
<context>
    <name>PanelMenus</name>
    <message>
        <source>Show Completed</source>
        <translation>Erledigte anzeigen</translation>
    </message>
    <message>
        <source>Completed at Bottom</source>
        <translation>Erledigte unten</translation>
    </message>
    <message>
        <source>Newest First</source>
        <translation>Neueste zuerst</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>In Dateiverwaltung anzeigen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Als Liste kopieren</translation>
    </message>
    <message>
        <source>Mark as Not Done</source>
        <translation>Als nicht erledigt markieren</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Als erledigt markieren</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>Einklappen</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>Ausklappen</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>In neuem Fenster bearbeiten</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Notizen zusammenführen</translation>
    </message>
    <message>
        <source>Split into Notes</source>
        <translation>In Notizen aufteilen</translation>
    </message>
    <message>
        <source>Add Attachment…</source>
        <translation>Anhang hinzufügen …</translation>
    </message>
    <message>
        <source>Paste Image or File</source>
        <translation>Bild oder Datei einfügen</translation>
    </message>
    <message>
        <source>Attachments</source>
        <translation>Anhänge</translation>
    </message>
    <message>
        <source>Move to</source>
        <translation>Verschieben nach</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Neuer Abschnitt …</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Use as Active Section</source>
        <translation>Als aktiven Abschnitt verwenden</translation>
    </message>
    <message>
        <source>Rename Section</source>
        <translation>Abschnitt umbenennen</translation>
    </message>
    <message>
        <source>Expand Section</source>
        <translation>Abschnitt ausklappen</translation>
    </message>
    <message>
        <source>Collapse Section</source>
        <translation>Abschnitt einklappen</translation>
    </message>
    <message>
        <source>Select All in Section</source>
        <translation>Alles im Abschnitt auswählen</translation>
    </message>
    <message>
        <source>Copy Section as List</source>
        <translation>Abschnitt als Liste kopieren</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
    <message>
        <source>Move to Top</source>
        <translation>Ganz nach oben</translation>
    </message>
    <message>
        <source>Move to Bottom</source>
        <translation>Ganz nach unten</translation>
    </message>
    <message>
        <source>Delete Section</source>
        <translation>Abschnitt löschen</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Neues Projekt …</translation>
    </message>
    <message>
        <source>Rename Project…</source>
        <translation>Projekt umbenennen …</translation>
    </message>
    <message>
        <source>Delete Project</source>
        <translation>Projekt löschen</translation>
    </message>
    <message>
        <source>Active Section</source>
        <translation>Aktiver Abschnitt</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Abschnitt wechseln …</translation>
    </message>
    <message>
        <source>Collapse All Sections</source>
        <translation>Alle Abschnitte einklappen</translation>
    </message>
    <message>
        <source>Expand All Sections</source>
        <translation>Alle Abschnitte ausklappen</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Copy All as List</source>
        <translation>Alle als Liste kopieren</translation>
    </message>
    <message>
        <source>Clear Completed</source>
        <translation>Erledigte entfernen</translation>
    </message>
    <message>
        <source>Export as Markdown…</source>
        <translation>Als Markdown exportieren …</translation>
    </message>
    <message>
        <source>Show Notes File in Files</source>
        <translation>Notizdatei in Dateiverwaltung anzeigen</translation>
    </message>
    <message>
        <source>Dashboard</source>
        <translation>Übersicht</translation>
    </message>
    <message>
        <source>All Commands</source>
        <translation>Alle Befehle</translation>
    </message>
    <message>
        <source>Reset Window Position</source>
        <translation>Fensterposition zurücksetzen</translation>
    </message>
    <message>
        <source>Reset Window Size</source>
        <translation>Fenstergröße zurücksetzen</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts…</source>
        <translation>Tastenkürzel …</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Vesko beenden</translation>
    </message>
</context>
<context>
    <name>PanelPrompts</name>
    <message>
        <source>New Section</source>
        <translation>Neuer Abschnitt</translation>
    </message>
    <message>
        <source>Section name</source>
        <translation>Name des Abschnitts</translation>
    </message>
    <message>
        <source>New Project</source>
        <translation>Neues Projekt</translation>
    </message>
    <message>
        <source>Project name</source>
        <translation>Name des Projekts</translation>
    </message>
    <message>
        <source>Rename Project</source>
        <translation>Projekt umbenennen</translation>
    </message>
</context>
<context>
    <name>QCommandLineParser</name>
    <message>
        <source>Usage: %1</source>
        <translation>Aufruf: %1</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Could not create the folder “%1”: %2.</source>
        <translation>Der Ordner „%1“ konnte nicht erstellt werden: %2.</translation>
    </message>
    <message>
        <source>The import was cancelled.</source>
        <translation>Der Import wurde abgebrochen.</translation>
    </message>
    <message>
        <source>“%1” is not a file on this computer.</source>
        <translation>„%1“ ist keine Datei auf diesem Rechner.</translation>
    </message>
    <message>
        <source>Could not read “%1”: %2.</source>
        <translation>„%1“ konnte nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>The copy of “%1” was cancelled.</source>
        <translation>Das Kopieren von „%1“ wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The library cannot move into its own Attachments folder “%1”. Choose a folder outside it.</source>
        <translation>Die Notizen können nicht in ihren eigenen Anhangsordner „%1“ verschoben werden. Wählen Sie einen Ordner außerhalb davon.</translation>
    </message>
    <message>
        <source>“%1” lies inside “%2”.</source>
        <translation>„%1“ liegt innerhalb von „%2“.</translation>
    </message>
    <message>
        <source>Could not read “%1” back: %2</source>
        <translation>„%1“ konnte nicht zurückgelesen werden: %2</translation>
    </message>
    <message>
        <source>“%1” exists and is not a folder.</source>
        <translation>„%1“ existiert und ist kein Ordner.</translation>
    </message>
    <message>
        <source>Could not open the folder “%1”: %2.</source>
        <translation>Der Ordner „%1“ konnte nicht geöffnet werden: %2.</translation>
    </message>
    <message>
        <source>Could not create “%1”: %2.</source>
        <translation>„%1“ konnte nicht erstellt werden: %2.</translation>
    </message>
    <message>
        <source>Could not set the permissions of “%1”: %2.</source>
        <translation>Die Zugriffsrechte von „%1“ konnten nicht gesetzt werden: %2.</translation>
    </message>
    <message>
        <source>Could not write “%1”: %2.</source>
        <translation>„%1“ konnte nicht geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>Could not flush “%1”: %2.</source>
        <translation>„%1“ konnte nicht auf den Datenträger geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>Could not close “%1”: %2.</source>
        <translation>„%1“ konnte nicht geschlossen werden: %2.</translation>
    </message>
    <message>
        <source>Could not replace “%1”: %2.</source>
        <translation>„%1“ konnte nicht ersetzt werden: %2.</translation>
    </message>
    <message>
        <source>“%1” already exists.</source>
        <translation>„%1“ existiert bereits.</translation>
    </message>
    <message>
        <source>Could not rename “%1”: %2.</source>
        <translation>„%1“ konnte nicht umbenannt werden: %2.</translation>
    </message>
    <message>
        <source>Could not read the link “%1”: %2.</source>
        <translation>Die Verknüpfung „%1“ konnte nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>Could not create the link “%1”: %2.</source>
        <translation>Die Verknüpfung „%1“ konnte nicht erstellt werden: %2.</translation>
    </message>
    <message>
        <source>“%1” is a link.</source>
        <translation>„%1“ ist eine Verknüpfung.</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>„%1“ ist keine Datei.</translation>
    </message>
    <message>
        <source>Could not copy “%1” to “%2”: %3.</source>
        <translation>„%1“ konnte nicht nach „%2“ kopiert werden: %3.</translation>
    </message>
    <message>
        <source>The request is not a JSON object.</source>
        <translation>Die Anfrage ist kein JSON-Objekt.</translation>
    </message>
</context>
<context>
    <name>RowAccessibility</name>
    <message>
        <source>Done</source>
        <translation>Erledigt</translation>
    </message>
    <message>
        <source>Not done</source>
        <translation>Nicht erledigt</translation>
    </message>
    <message>
        <source>Mark as not done</source>
        <translation>Als nicht erledigt markieren</translation>
    </message>
    <message>
        <source>Mark as done</source>
        <translation>Als erledigt markieren</translation>
    </message>
    <message>
        <source>%1. Attachments: %2</source>
        <translation>%1. Anhänge: %2</translation>
    </message>
    <message>
        <source>%1 section, %2 remaining</source>
        <translation>Abschnitt %1, %2 offen</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>Vesko Settings</source>
        <translation>Vesko-Einstellungen</translation>
    </message>
</context>
<context>
    <name>Shortcut</name>
    <message>
        <source>New Note</source>
        <translation>Neue Notiz</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Neuer Abschnitt …</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Neues Projekt …</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Abschnitt wechseln …</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Projekt wechseln …</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Vorheriger Abschnitt</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Nächster Abschnitt</translation>
    </message>
    <message>
        <source>Move Section Up</source>
        <translation>Abschnitt nach oben verschieben</translation>
    </message>
    <message>
        <source>Move Section Down</source>
        <translation>Abschnitt nach unten verschieben</translation>
    </message>
    <message>
        <source>Collapse or Expand Active Section</source>
        <translation>Aktiven Abschnitt ein- oder ausklappen</translation>
    </message>
    <message>
        <source>Jump to Section 1</source>
        <translation>Zu Abschnitt 1 springen</translation>
    </message>
    <message>
        <source>Jump to Section 2</source>
        <translation>Zu Abschnitt 2 springen</translation>
    </message>
    <message>
        <source>Jump to Section 3</source>
        <translation>Zu Abschnitt 3 springen</translation>
    </message>
    <message>
        <source>Jump to Section 4</source>
        <translation>Zu Abschnitt 4 springen</translation>
    </message>
    <message>
        <source>Jump to Section 5</source>
        <translation>Zu Abschnitt 5 springen</translation>
    </message>
    <message>
        <source>Jump to Section 6</source>
        <translation>Zu Abschnitt 6 springen</translation>
    </message>
    <message>
        <source>Jump to Section 7</source>
        <translation>Zu Abschnitt 7 springen</translation>
    </message>
    <message>
        <source>Jump to Section 8</source>
        <translation>Zu Abschnitt 8 springen</translation>
    </message>
    <message>
        <source>Jump to Section 9</source>
        <translation>Zu Abschnitt 9 springen</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alles auswählen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Als Liste kopieren</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Notizen zusammenführen</translation>
    </message>
    <message>
        <source>Expand or Collapse Note</source>
        <translation>Notiz aus- oder einklappen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>In neuem Fenster bearbeiten</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Vesko ausblenden</translation>
    </message>
    <message>
        <source>Select Previous Note</source>
        <translation>Vorherige Notiz auswählen</translation>
    </message>
    <message>
        <source>Select Next Note</source>
        <translation>Nächste Notiz auswählen</translation>
    </message>
    <message>
        <source>Extend Selection Up</source>
        <translation>Auswahl nach oben erweitern</translation>
    </message>
    <message>
        <source>Extend Selection Down</source>
        <translation>Auswahl nach unten erweitern</translation>
    </message>
    <message>
        <source>First Note</source>
        <translation>Erste Notiz</translation>
    </message>
    <message>
        <source>Last Note</source>
        <translation>Letzte Notiz</translation>
    </message>
    <message>
        <source>Mark or Unmark Done</source>
        <translation>Als erledigt markieren oder Markierung aufheben</translation>
    </message>
    <message>
        <source>Edit Note</source>
        <translation>Notiz bearbeiten</translation>
    </message>
    <message>
        <source>Focus Composer</source>
        <translation>Eingabefeld fokussieren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Add Note</source>
        <translation>Notiz hinzufügen</translation>
    </message>
    <message>
        <source>New Line</source>
        <translation>Neue Zeile</translation>
    </message>
    <message>
        <source>Create or Use Section</source>
        <translation>Abschnitt erstellen oder verwenden</translation>
    </message>
    <message>
        <source>Ctrl+Backspace</source>
        <translation>Strg+Rücktaste</translation>
    </message>
    <message>
        <source>Ctrl+Up / Home</source>
        <translation>Strg+Hoch / Pos1</translation>
    </message>
    <message>
        <source>Ctrl+Down / End</source>
        <translation>Strg+Runter / Ende</translation>
    </message>
    <message>
        <source>Shift+Return</source>
        <translation>Umschalt+Return</translation>
    </message>
    <message>
        <source># Name</source>
        <translation># Name</translation>
    </message>
</context>
<context>
    <name>ShortcutRecorderView</name>
    <message>
        <source>Add a modifier like Ctrl or Alt.</source>
        <translation>Fügen Sie eine Zusatztaste wie Strg oder Alt hinzu.</translation>
    </message>
    <message>
        <source>Already used by “%1”.</source>
        <translation>Bereits von „%1“ belegt.</translation>
    </message>
</context>
<context>
    <name>TextOut</name>
    <message>
        <source>Copied as List</source>
        <translation>Als Liste kopiert</translation>
    </message>
    <message>
        <source>Copied</source>
        <translation>Kopiert</translation>
    </message>
    <message>
        <source>Exported</source>
        <translation>Exportiert</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
</context>
<context>
    <name>Vesko::AboutSettingsView</name>
    <message>
        <source>Vesko icon</source>
        <translation>Vesko-Symbol</translation>
    </message>
    <message>
        <source>Vesko</source>
        <translation>Vesko</translation>
    </message>
    <message>
        <source>A to-do list, a clipboard, and a scratchpad in one panel. Built for working alongside AI tools.</source>
        <translation>Aufgabenliste, Zwischenablage und Notizblock in einem Panel. Gemacht für die Arbeit neben KI-Werkzeugen.</translation>
    </message>
    <message>
        <source>Notes stay in a local file</source>
        <translation>Notizen bleiben in einer lokalen Datei</translation>
    </message>
    <message>
        <source>No tracking, no telemetry</source>
        <translation>Keine Verfolgung, keine Telemetrie</translation>
    </message>
    <message>
        <source>No account, no sync</source>
        <translation>Kein Konto, keine Synchronisierung</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
</context>
<context>
    <name>Vesko::AppCommands</name>
    <message>
        <source>Vesko</source>
        <translation>Vesko</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts…</source>
        <translation>Tastenkürzel …</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Vesko beenden</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>New Note</source>
        <translation>Neue Notiz</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Neuer Abschnitt …</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Abschnitt wechseln …</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Neues Projekt …</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Projekt wechseln …</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Auswahl erfassen</translation>
    </message>
    <message>
        <source>Show Vesko</source>
        <translation>Vesko anzeigen</translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Vesko ausblenden</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Als Liste kopieren</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Als erledigt markieren</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Notizen zusammenführen</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>In neuem Fenster bearbeiten</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alles auswählen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Clear Completed</source>
        <translation>Erledigte entfernen</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Abschnitte</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Vorheriger Abschnitt</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Nächster Abschnitt</translation>
    </message>
    <message>
        <source>Collapse or Expand Active Section</source>
        <translation>Aktiven Abschnitt ein- oder ausklappen</translation>
    </message>
    <message>
        <source>Expand or Collapse Note</source>
        <translation>Notiz aus- oder einklappen</translation>
    </message>
</context>
<context>
    <name>Vesko::ApplicationBus</name>
    <message>
        <source>There is no session bus.</source>
        <translation>Es gibt keinen Sitzungsbus.</translation>
    </message>
    <message>
        <source>Another program owns the name %1.</source>
        <translation>Ein anderes Programm besitzt den Namen %1.</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentActions</name>
    <message>
        <source>Could Not Paste Attachment</source>
        <translation>Anhang konnte nicht eingefügt werden</translation>
    </message>
    <message>
        <source>No Image or File to Paste</source>
        <translation>Kein Bild und keine Datei zum Einfügen</translation>
    </message>
    <message>
        <source>Attachment Added</source>
        <translation>Anhang hinzugefügt</translation>
    </message>
    <message>
        <source>Could Not Add Attachment</source>
        <translation>Anhang konnte nicht hinzugefügt werden</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentFileDialog</name>
    <message>
        <source>Add Attachments</source>
        <translation>Anhänge hinzufügen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentTile</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>In Dateiverwaltung anzeigen</translation>
    </message>
    <message>
        <source>Remove Attachment</source>
        <translation>Anhang entfernen</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>%1 öffnen</translation>
    </message>
</context>
<context>
    <name>Vesko::CaptureEngine</name>
    <message>
        <source>Copied as List</source>
        <translation>Als Liste kopiert</translation>
    </message>
    <message>
        <source>Accessibility Access Needed</source>
        <translation>Zugriff auf Barrierefreiheit nötig</translation>
    </message>
    <message>
        <source>Nothing Selected</source>
        <translation>Nichts ausgewählt</translation>
    </message>
    <message>
        <source>Capture Failed</source>
        <translation>Erfassen fehlgeschlagen</translation>
    </message>
    <message>
        <source>Captured</source>
        <translation>Erfasst</translation>
    </message>
</context>
<context>
    <name>Vesko::CaptureSettingsView</name>
    <message>
        <source>Bring the panel forward, or send it away.</source>
        <translation>Das Panel nach vorne holen oder wegschicken.</translation>
    </message>
    <message>
        <source>Open the panel with the composer already focused.</source>
        <translation>Das Panel öffnen, mit dem Eingabefeld bereits im Fokus.</translation>
    </message>
    <message>
        <source>Save whatever text is selected in the app in front.</source>
        <translation>Den Text speichern, der in der vorderen Anwendung ausgewählt ist.</translation>
    </message>
    <message>
        <source>Put the selected notes on the clipboard as a list.</source>
        <translation>Die ausgewählten Notizen als Liste in die Zwischenablage legen.</translation>
    </message>
    <message>
        <source>Grant Access…</source>
        <translation>Zugriff gewähren …</translation>
    </message>
    <message>
        <source>Open System Settings…</source>
        <translation>Systemeinstellungen öffnen …</translation>
    </message>
    <message>
        <source>Capture with Shift pressed twice</source>
        <translation>Mit doppeltem Umschalt erfassen</translation>
    </message>
    <message>
        <source>Bring the panel forward on capture</source>
        <translation>Panel beim Erfassen nach vorne holen</translation>
    </message>
    <message>
        <source>Permission</source>
        <translation>Berechtigung</translation>
    </message>
    <message>
        <source>Double Shift</source>
        <translation>Doppeltes Umschalt</translation>
    </message>
    <message>
        <source>Listener</source>
        <translation>Überwachung</translation>
    </message>
    <message>
        <source>Time between presses</source>
        <translation>Zeit zwischen den Tastendrücken</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Captured notes</source>
        <translation>Erfasste Notizen</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>Capture works in this session</source>
        <translation>Erfassen funktioniert in dieser Sitzung</translation>
    </message>
    <message>
        <source>Capture is not set up in this session</source>
        <translation>Erfassen ist in dieser Sitzung nicht eingerichtet</translation>
    </message>
    <message>
        <source>Listening</source>
        <translation>Aktiv</translation>
    </message>
    <message>
        <source>Not listening</source>
        <translation>Nicht aktiv</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Command for “%1”</source>
        <translation>Befehl für „%1“</translation>
    </message>
    <message>
        <source>Lines for the sway configuration</source>
        <translation>Zeilen für die sway-Konfiguration</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Commands that turn on double Shift in KWin</source>
        <translation>Befehle, die doppeltes Umschalt in KWin einschalten</translation>
    </message>
    <message>
        <source>Vesko reads the selected text only when you capture, and watches only the Shift key for double Shift. Nothing is recorded or sent anywhere.</source>
        <translation>Vesko liest den ausgewählten Text nur, wenn Sie erfassen, und beobachtet für doppeltes Umschalt nur die Umschalttaste. Nichts wird aufgezeichnet oder irgendwohin gesendet.</translation>
    </message>
</context>
<context>
    <name>Vesko::ComposerView</name>
    <message>
        <source>Add images or files</source>
        <translation>Bilder oder Dateien hinzufügen</translation>
    </message>
    <message>
        <source>Add Attachment</source>
        <translation>Anhang hinzufügen</translation>
    </message>
    <message>
        <source>Add to %1</source>
        <translation>Zu %1 hinzufügen</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>%1 wird verwendet</translation>
    </message>
</context>
<context>
    <name>Vesko::GeneralSettingsView</name>
    <message>
        <source>Show on all workspaces</source>
        <translation>Auf allen Arbeitsflächen anzeigen</translation>
    </message>
    <message>
        <source>Always on top</source>
        <translation>Immer im Vordergrund</translation>
    </message>
    <message>
        <source>Show in the system tray</source>
        <translation>Im Systembereich anzeigen</translation>
    </message>
    <message>
        <source>Show in the taskbar</source>
        <translation>In der Fensterleiste anzeigen</translation>
    </message>
    <message>
        <source>Open at login</source>
        <translation>Bei der Anmeldung öffnen</translation>
    </message>
    <message>
        <source>Keep Markdown when copying</source>
        <translation>Markdown beim Kopieren beibehalten</translation>
    </message>
    <message>
        <source>Panel</source>
        <translation>Panel</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>Erscheinungsbild</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Window position</source>
        <translation>Fensterposition</translation>
    </message>
    <message>
        <source>Reset Window Position</source>
        <translation>Fensterposition zurücksetzen</translation>
    </message>
    <message>
        <source>Reset Window Size</source>
        <translation>Fenstergröße zurücksetzen</translation>
    </message>
    <message>
        <source>Choose a preset or drag and resize the window; Vesko remembers both.</source>
        <translation>Wählen Sie eine Vorgabe oder verschieben Sie das Fenster und ändern Sie seine Größe; Vesko merkt sich beides.</translation>
    </message>
    <message>
        <source>Behaviour</source>
        <translation>Verhalten</translation>
    </message>
    <message>
        <source>Lists</source>
        <translation>Listen</translation>
    </message>
    <message>
        <source>1. 2. 3.</source>
        <translation>1. 2. 3.</translation>
    </message>
    <message>
        <source>- - -</source>
        <translation>- - -</translation>
    </message>
    <message>
        <source>No marker</source>
        <translation>Kein Aufzählungszeichen</translation>
    </message>
    <message>
        <source>Copy as List uses</source>
        <translation>„Als Liste kopieren“ verwendet</translation>
    </message>
</context>
<context>
    <name>Vesko::NativeInlineTextField</name>
    <message>
        <source>No Guesses Found</source>
        <translation>Keine Vorschläge gefunden</translation>
    </message>
</context>
<context>
    <name>Vesko::NoteEditorView</name>
    <message>
        <source>Note text</source>
        <translation>Notiztext</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Als erledigt markieren</translation>
    </message>
    <message>
        <source>Add Attachment</source>
        <translation>Anhang hinzufügen</translation>
    </message>
    <message>
        <source>Add images or files</source>
        <translation>Bilder oder Dateien hinzufügen</translation>
    </message>
    <message>
        <source>Show or hide the rendered preview</source>
        <translation>Die gerenderte Vorschau anzeigen oder ausblenden</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy this note</source>
        <translation>Diese Notiz kopieren</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Erledigt</translation>
    </message>
</context>
<context>
    <name>Vesko::NoteRequests</name>
    <message>
        <source>Unknown action “%1”.</source>
        <translation>Unbekannte Aktion „%1“.</translation>
    </message>
    <message>
        <source>Unknown request “%1”.</source>
        <translation>Unbekannte Anfrage „%1“.</translation>
    </message>
    <message>
        <source>There are no projects.</source>
        <translation>Es gibt keine Projekte.</translation>
    </message>
    <message>
        <source>There is no project named “%1”.</source>
        <translation>Es gibt kein Projekt namens „%1“.</translation>
    </message>
    <message>
        <source>The note is blank.</source>
        <translation>Die Notiz ist leer.</translation>
    </message>
    <message>
        <source>The note could not be added.</source>
        <translation>Die Notiz konnte nicht hinzugefügt werden.</translation>
    </message>
    <message>
        <source>The project “%1” has no section titled “%2”.</source>
        <translation>Das Projekt „%1“ hat keinen Abschnitt mit dem Titel „%2“.</translation>
    </message>
    <message>
        <source>The query is blank.</source>
        <translation>Der Suchbegriff ist leer.</translation>
    </message>
    <message>
        <source>Say whether the notes are done (true or false).</source>
        <translation>Geben Sie an, ob die Notizen erledigt sind (true oder false).</translation>
    </message>
    <message>
        <source>No note ids were given.</source>
        <translation>Es wurden keine Notiz-IDs angegeben.</translation>
    </message>
    <message>
        <source>No note has the id “%1”.</source>
        <translation>Keine Notiz hat die ID „%1“.</translation>
    </message>
    <message numerus="yes">
        <source>The note is too long: at most %n characters.</source>
        <translation>
            <numerusform>Die Notiz ist zu lang: höchstens %n Zeichen.</numerusform>
            <numerusform>Die Notiz ist zu lang: höchstens %n Zeichen.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Vesko::NoteRowView</name>
    <message>
        <source>Note</source>
        <translation>Notiz</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelCommands</name>
    <message>
        <source>Could Not Add Attachment</source>
        <translation>Anhang konnte nicht hinzugefügt werden</translation>
    </message>
    <message>
        <source>Export as Markdown</source>
        <translation>Als Markdown exportieren</translation>
    </message>
    <message>
        <source>Markdown (*.md)</source>
        <translation>Markdown (*.md)</translation>
    </message>
    <message>
        <source>Plain text (*.txt)</source>
        <translation>Reiner Text (*.txt)</translation>
    </message>
    <message>
        <source>The notes could not be exported to “%1”.</source>
        <translation>Die Notizen konnten nicht nach „%1“ exportiert werden.</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelListView</name>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
    <message>
        <source>Added</source>
        <translation>Hinzugefügt</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelPromptView</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelRootView</name>
    <message>
        <source>More options</source>
        <translation>Weitere Optionen</translation>
    </message>
    <message>
        <source>No matches</source>
        <translation>Keine Treffer</translation>
    </message>
    <message>
        <source>Try a different word.</source>
        <translation>Versuchen Sie ein anderes Wort.</translation>
    </message>
    <message>
        <source>Nothing here yet</source>
        <translation>Noch nichts hier</translation>
    </message>
    <message>
        <source>Select text anywhere and press Shift twice, or Ctrl+Shift+N for a new section.</source>
        <translation>Wählen Sie irgendwo Text aus und drücken Sie zweimal Umschalt, oder Strg+Umschalt+N für einen neuen Abschnitt.</translation>
    </message>
</context>
<context>
    <name>Vesko::PendingAttachmentStrip</name>
    <message>
        <source>Remove %1</source>
        <translation>%1 entfernen</translation>
    </message>
</context>
<context>
    <name>Vesko::ProjectSwitcherView</name>
    <message>
        <source>Switch project</source>
        <translation>Projekt wechseln</translation>
    </message>
    <message>
        <source>↵ switch · esc close · %1 for a new project</source>
        <translation>↵ wechseln · Esc schließen · %1 für ein neues Projekt</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>%1 wird verwendet</translation>
    </message>
</context>
<context>
    <name>Vesko::QuitGuard</name>
    <message>
        <source>Vesko</source>
        <translation>Vesko</translation>
    </message>
    <message>
        <source>Your latest changes could not be saved.</source>
        <translation>Ihre letzten Änderungen konnten nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Quit Anyway</source>
        <translation>Trotzdem beenden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>Vesko::SaveStatusView</name>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
</context>
<context>
    <name>Vesko::SearchFieldView</name>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Clear search</source>
        <translation>Suche leeren</translation>
    </message>
</context>
<context>
    <name>Vesko::SectionHeaderView</name>
    <message>
        <source>Section name</source>
        <translation>Name des Abschnitts</translation>
    </message>
    <message>
        <source>Active section</source>
        <translation>Aktiver Abschnitt</translation>
    </message>
    <message>
        <source>Drag to reorder</source>
        <translation>Zum Umsortieren ziehen</translation>
    </message>
</context>
<context>
    <name>Vesko::SectionSwitcherView</name>
    <message>
        <source>Switch section</source>
        <translation>Abschnitt wechseln</translation>
    </message>
    <message>
        <source>↵ switch · F2 rename · esc close</source>
        <translation>↵ wechseln · F2 umbenennen · Esc schließen</translation>
    </message>
    <message>
        <source>Rename Section</source>
        <translation>Abschnitt umbenennen</translation>
    </message>
    <message>
        <source>Section name</source>
        <translation>Name des Abschnitts</translation>
    </message>
    <message>
        <source>↵ to rename · esc to cancel</source>
        <translation>↵ umbenennen · Esc abbrechen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Renamed</source>
        <translation>Umbenannt</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>%1 wird verwendet</translation>
    </message>
</context>
<context>
    <name>Vesko::SettingsView</name>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Erfassen</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Speicherort</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
</context>
<context>
    <name>Vesko::ShortcutRecorderView</name>
    <message>
        <source>%1 shortcut</source>
        <translation>Tastenkürzel für %1</translation>
    </message>
    <message>
        <source>Remove this shortcut</source>
        <translation>Dieses Tastenkürzel entfernen</translation>
    </message>
    <message>
        <source>Press keys…</source>
        <translation>Tasten drücken …</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keines</translation>
    </message>
    <message>
        <source>Already used by “%1”.</source>
        <translation>Bereits von „%1“ belegt.</translation>
    </message>
    <message>
        <source>Taken by another application</source>
        <translation>Von einer anderen Anwendung belegt</translation>
    </message>
    <message>
        <source>Not set</source>
        <translation>Nicht festgelegt</translation>
    </message>
    <message>
        <source>Your desktop keeps this shortcut: click to change it in the desktop&apos;s settings.</source>
        <translation>Ihre Arbeitsumgebung verwaltet dieses Tastenkürzel: Klicken Sie, um es in ihren Einstellungen zu ändern.</translation>
    </message>
    <message>
        <source>Your desktop keeps this shortcut: change it in the desktop&apos;s settings.</source>
        <translation>Ihre Arbeitsumgebung verwaltet dieses Tastenkürzel: Ändern Sie es in ihren Einstellungen.</translation>
    </message>
</context>
<context>
    <name>Vesko::ShortcutSheetView</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>esc to close</source>
        <translation>Esc zum Schließen</translation>
    </message>
    <message>
        <source>In this window</source>
        <translation>In diesem Fenster</translation>
    </message>
    <message>
        <source>While composing</source>
        <translation>Beim Schreiben</translation>
    </message>
    <message>
        <source>SYSTEM-WIDE</source>
        <translation>SYSTEMWEIT</translation>
    </message>
    <message>
        <source>—</source>
        <translation>—</translation>
    </message>
</context>
<context>
    <name>Vesko::SingleInstance</name>
    <message>
        <source>There is no private folder for the instance lock.</source>
        <translation>Es gibt keinen privaten Ordner für die Instanzsperre.</translation>
    </message>
    <message>
        <source>Could not lock “%1”: %2.</source>
        <translation>„%1“ konnte nicht gesperrt werden: %2.</translation>
    </message>
</context>
<context>
    <name>Vesko::StorageSettingsView</name>
    <message>
        <source>Show in Files</source>
        <translation>In Dateiverwaltung anzeigen</translation>
    </message>
    <message>
        <source>Move…</source>
        <translation>Verschieben …</translation>
    </message>
    <message>
        <source>Use Default Location</source>
        <translation>Standardort verwenden</translation>
    </message>
    <message>
        <source>Cancel Move</source>
        <translation>Verschieben abbrechen</translation>
    </message>
    <message>
        <source>Moving your notes…</source>
        <translation>Ihre Notizen werden verschoben …</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Lokale Datei</translation>
    </message>
    <message>
        <source>Notes file</source>
        <translation>Notizdatei</translation>
    </message>
    <message>
        <source>One JSON file on your computer. No sync, no server, no account. Put it in a synced folder if you want it on more than one machine.</source>
        <translation>Eine JSON-Datei auf Ihrem Rechner. Keine Synchronisierung, kein Server, kein Konto. Legen Sie sie in einen synchronisierten Ordner, wenn Sie sie auf mehr als einem Rechner haben möchten.</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Export All as Markdown…</source>
        <translation>Alles als Markdown exportieren …</translation>
    </message>
    <message>
        <source>Copy This Project as List</source>
        <translation>Dieses Projekt als Liste kopieren</translation>
    </message>
    <message>
        <source>Housekeeping</source>
        <translation>Aufräumen</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projekte</translation>
    </message>
    <message>
        <source>Clear Completed in This Project</source>
        <translation>Erledigte in diesem Projekt entfernen</translation>
    </message>
    <message>
        <source>Copied as List</source>
        <translation>Als Liste kopiert</translation>
    </message>
    <message>
        <source>Move Notes File</source>
        <translation>Notizdatei verschieben</translation>
    </message>
    <message>
        <source>Move Here</source>
        <translation>Hierher verschieben</translation>
    </message>
    <message>
        <source>Choose where Vesko should keep your notes file.</source>
        <translation>Wählen Sie, wo Vesko Ihre Notizdatei aufbewahren soll.</translation>
    </message>
    <message>
        <source>Moving your notes… %1%</source>
        <translation>Ihre Notizen werden verschoben … %1 %</translation>
    </message>
    <message>
        <source>%1 in this project</source>
        <translation>%1 in diesem Projekt</translation>
    </message>
</context>
<context>
    <name>Vesko::Store</name>
    <message>
        <source>There is no backup to restore.</source>
        <translation>Es gibt keine Sicherung zum Wiederherstellen.</translation>
    </message>
    <message>
        <source>No backup could be read.</source>
        <translation>Keine Sicherung konnte gelesen werden.</translation>
    </message>
    <message>
        <source>The library is already being moved.</source>
        <translation>Die Notizen werden bereits verschoben.</translation>
    </message>
    <message>
        <source>The move was cancelled.</source>
        <translation>Das Verschieben wurde abgebrochen.</translation>
    </message>
</context>
<context>
    <name>Vesko::SwitcherView</name>
    <message>
        <source>Create “%1”</source>
        <translation>„%1“ erstellen</translation>
    </message>
</context>
<context>
    <name>Vesko::UnreadableLibraryView</name>
    <message>
        <source>Restore Latest Backup</source>
        <translation>Letzte Sicherung wiederherstellen</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>In Dateiverwaltung anzeigen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Your notes file could not be read. It was set aside as “%1”.</source>
        <translation>Ihre Notizdatei konnte nicht gelesen werden. Sie wurde als „%1“ beiseitegelegt.</translation>
    </message>
    <message>
        <source>Your notes file could not be read.</source>
        <translation>Ihre Notizdatei konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>There is no backup to restore.</source>
        <translation>Es gibt keine Sicherung zum Wiederherstellen.</translation>
    </message>
</context>
<context>
    <name>Vesko::WindowCloseKeys</name>
    <message>
        <source>Close Window</source>
        <translation>Fenster schließen</translation>
    </message>
</context>
</TS>
