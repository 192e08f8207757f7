<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>CaptureSettingsView</name>
    <message>
        <source>Vesko is not running on an X server, so it cannot see other applications&apos; keys and selected text.</source>
        <translation>Vesko ne s&apos;exécute pas sur un serveur X et ne peut donc pas voir les touches ni le texte sélectionné des autres applications.</translation>
    </message>
    <message>
        <source>The X server lacks the XInput 2 extension, which tells Vesko about Shift presses.</source>
        <translation>Il manque au serveur X l&apos;extension XInput 2, qui signale à Vesko les appuis sur Maj.</translation>
    </message>
    <message>
        <source>The X server lacks XTEST, which Vesko uses to copy the selected text.</source>
        <translation>Il manque au serveur X l&apos;extension XTEST, dont Vesko se sert pour copier le texte sélectionné.</translation>
    </message>
    <message>
        <source>The X server lacks the X-Resource extension, which tells Vesko which application owns the selected text.</source>
        <translation>Il manque au serveur X l&apos;extension X-Resource, qui indique à Vesko à quelle application appartient le texte sélectionné.</translation>
    </message>
    <message>
        <source>To capture with double Shift and the shortcuts, log in to an X11 (Xorg) session. Here you can still open the panel from the system tray, paste text into the composer and drop files on notes.</source>
        <translation>Pour capturer avec le double Maj et les raccourcis, ouvrez une session X11 (Xorg). Ici, vous pouvez toujours ouvrir le panneau depuis la zone de notification, coller du texte dans la zone de saisie et déposer des fichiers sur les notes.</translation>
    </message>
    <message>
        <source>Enable the extension in the X server&apos;s configuration and start Vesko again. Until then, paste text into the composer and drop files on notes.</source>
        <translation>Activez l&apos;extension dans la configuration du serveur X et redémarrez Vesko. En attendant, collez du texte dans la zone de saisie et déposez des fichiers sur les notes.</translation>
    </message>
    <message>
        <source>This Wayland desktop does not let Vesko read the text selected in other applications.</source>
        <translation>Ce bureau Wayland ne permet pas à Vesko de lire le texte sélectionné dans les autres applications.</translation>
    </message>
    <message>
        <source>Here you can still bind Vesko&apos;s commands to keys, paste text into the composer and drop files on notes. In an X11 (Xorg) session capture works in full.</source>
        <translation>Vous pouvez toutefois associer les commandes de Vesko à des touches, coller du texte dans la zone de saisie et déposer des fichiers sur les notes. Dans une session X11 (Xorg), la capture fonctionne entièrement.</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Raccourcis</translation>
    </message>
    <message>
        <source>Vesko holds its shortcuts itself.</source>
        <translation>Vesko gère lui-même ses raccourcis.</translation>
    </message>
    <message>
        <source>Your desktop keeps Vesko&apos;s shortcuts; you change them in its settings.</source>
        <translation>Votre bureau gère les raccourcis de Vesko&#xa0;; vous les modifiez dans ses paramètres.</translation>
    </message>
    <message>
        <source>This desktop gives Vesko no shortcuts of its own. Bind the commands below to keys in its keyboard settings.</source>
        <translation>Ce bureau ne donne pas de raccourcis propres à Vesko. Associez les commandes ci-dessous à des touches dans ses paramètres du clavier.</translation>
    </message>
    <message>
        <source>Selected text</source>
        <translation>Texte sélectionné</translation>
    </message>
    <message>
        <source>Read from the application in front when you capture.</source>
        <translation>Lu dans l’application au premier plan lors de la capture.</translation>
    </message>
    <message>
        <source>Read as the panel comes forward, so capture with a shortcut that runs “%1”.</source>
        <translation>Lu quand le panneau passe au premier plan&#xa0;: capturez donc avec un raccourci qui lance «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>This desktop does not let Vesko read it. Paste text into the composer instead.</source>
        <translation>Ce bureau ne permet pas à Vesko de le lire. Collez plutôt le texte dans la zone de saisie.</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Source</translation>
    </message>
    <message>
        <source>Captured notes are filed under the application and window they came from.</source>
        <translation>Les notes capturées sont classées sous l’application et la fenêtre d’où elles viennent.</translation>
    </message>
    <message>
        <source>The application and window in front are read through the accessibility bus, and captured notes are filed under them.</source>
        <translation>L’application et la fenêtre au premier plan sont lues par le bus d’accessibilité, et les notes capturées sont classées sous elles.</translation>
    </message>
    <message>
        <source>This desktop does not tell which application is in front, so captured notes are filed under “Unknown”.</source>
        <translation>Ce bureau n’indique pas quelle application est au premier plan&#xa0;: les notes capturées sont donc classées sous «&#xa0;Unknown&#xa0;».</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>When an application keeps no selection, Vesko presses Ctrl+Insert for you.</source>
        <translation>Quand une application ne garde pas de sélection, Vesko appuie pour vous sur Ctrl+Inser.</translation>
    </message>
    <message>
        <source>Vesko cannot press Ctrl+Insert here: select the text before you capture.</source>
        <translation>Vesko ne peut pas appuyer sur Ctrl+Inser ici&#xa0;: sélectionnez le texte avant de capturer.</translation>
    </message>
    <message>
        <source>Double Shift</source>
        <translation>Double Maj</translation>
    </message>
    <message>
        <source>Vesko sees the Shift key when you turn it on.</source>
        <translation>Vesko voit la touche Maj dès que vous l’activez.</translation>
    </message>
    <message>
        <source>Your desktop passes each Shift release to Vesko.</source>
        <translation>Votre bureau transmet à Vesko chaque relâchement de Maj.</translation>
    </message>
    <message>
        <source>Not available on this desktop; use the capture shortcut instead.</source>
        <translation>Indisponible sur ce bureau&#xa0;; utilisez plutôt le raccourci de capture.</translation>
    </message>
    <message>
        <source>The desktop refused Vesko&apos;s shortcuts. Bind the commands below in its keyboard settings instead.</source>
        <translation>Le bureau a refusé les raccourcis de Vesko. Associez plutôt les commandes ci-dessous dans ses paramètres du clavier.</translation>
    </message>
    <message>
        <source>The desktop ended Vesko&apos;s shortcuts. Start Vesko again to bind them, or bind the commands below in its keyboard settings.</source>
        <translation>Le bureau a mis fin aux raccourcis de Vesko. Relancez Vesko pour les associer, ou associez les commandes ci-dessous dans ses paramètres du clavier.</translation>
    </message>
    <message>
        <source>The desktop did not answer when Vesko asked for its shortcuts. Bind the commands below in its keyboard settings instead.</source>
        <translation>Le bureau n’a pas répondu quand Vesko a demandé ses raccourcis. Associez plutôt les commandes ci-dessous dans ses paramètres du clavier.</translation>
    </message>
    <message>
        <source>In Settings &gt; Keyboard &gt; Custom Shortcuts (under “View and Customize Shortcuts”), add a shortcut for each command: a name, the command, and the keys.</source>
        <translation>Dans Paramètres &gt; Clavier &gt; Raccourcis personnalisés (sous «&#xa0;Afficher et personnaliser les raccourcis&#xa0;»), ajoutez un raccourci pour chaque commande&#xa0;: un nom, la commande et les touches.</translation>
    </message>
    <message>
        <source>In System Settings &gt; Keyboard &gt; Shortcuts, choose “Add New” &gt; “Command or Script” for each command and give it keys.</source>
        <translation>Dans Configuration du système &gt; Clavier &gt; Raccourcis, choisissez «&#xa0;Ajouter un nouveau&#xa0;» &gt; «&#xa0;Commande ou script&#xa0;» pour chaque commande et donnez-lui des touches.</translation>
    </message>
    <message>
        <source>Add these lines to your sway configuration (~/.config/sway/config), then reload sway:</source>
        <translation>Ajoutez ces lignes à votre configuration de sway (~/.config/sway/config), puis rechargez sway&#xa0;:</translation>
    </message>
    <message>
        <source>In your desktop&apos;s keyboard settings, bind keys to each command.</source>
        <translation>Dans les paramètres du clavier de votre bureau, associez des touches à chaque commande.</translation>
    </message>
    <message>
        <source>Run the two commands under Double Shift once to have KWin pass each lone Shift release to Vesko.</source>
        <translation>Exécutez une fois les deux commandes sous «&#xa0;Double Maj&#xa0;» pour que KWin transmette à Vesko chaque relâchement isolé de Maj.</translation>
    </message>
    <message>
        <source>Add “bindsym --release Shift_L exec %1” to your sway configuration to have sway pass each lone Shift release to Vesko.</source>
        <translation>Ajoutez « bindsym --release Shift_L exec %1 » à votre configuration de sway pour que sway transmette à Vesko chaque relâchement isolé de Maj.</translation>
    </message>
    <message>
        <source>Vesko runs here as an X11 program (XWayland), which cannot read the text selected in other applications.</source>
        <translation>Vesko s&apos;exécute ici comme programme X11 (XWayland) et ne peut pas lire le texte sélectionné dans les autres applications.</translation>
    </message>
    <message>
        <source>Start Vesko on Qt&apos;s Wayland platform, with %1 in its environment, to capture on this desktop.</source>
        <translation>Lancez Vesko sur la plateforme Wayland de Qt, avec %1 dans son environnement, pour capturer sur ce bureau.</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Shows this help.</source>
        <translation>Affiche cette aide.</translation>
    </message>
    <message>
        <source>Vesko, a keyboard-driven notes panel.</source>
        <translation>Vesko, un panneau de notes piloté au clavier.</translation>
    </message>
    <message>
        <source>Shows the version.</source>
        <translation>Affiche la version.</translation>
    </message>
    <message>
        <source>Starts without showing the panel and waits for commands.</source>
        <translation>Démarre sans afficher le panneau et attend des commandes.</translation>
    </message>
    <message>
        <source>What to do (see Commands).</source>
        <translation>Ce qu&apos;il faut faire (voir Commandes).</translation>
    </message>
    <message>
        <source>--background starts Vesko: it takes no command.</source>
        <translation>--background démarre Vesko&#xa0;: il n&apos;accepte aucune commande.</translation>
    </message>
    <message>
        <source>The section, by its title.</source>
        <translation>La section, par son titre.</translation>
    </message>
    <message>
        <source>NAME</source>
        <translation>NOM</translation>
    </message>
    <message>
        <source>The project, by its name.</source>
        <translation>Le projet, par son nom.</translation>
    </message>
    <message>
        <source>Lists the done notes too.</source>
        <translation>Liste aussi les notes terminées.</translation>
    </message>
    <message>
        <source>Prints a JSON array with one object per note.</source>
        <translation>Affiche un tableau JSON avec un objet par note.</translation>
    </message>
    <message>
        <source>Runs the action &quot;%1&quot; in the running Vesko.</source>
        <translation>Exécute l&apos;action «&#xa0;%1&#xa0;» dans le Vesko en cours d&apos;exécution.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; takes no arguments.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;accepte aucun argument.</translation>
    </message>
    <message>
        <source>Adds a note to the active project, or to the project and section given.</source>
        <translation>Ajoute une note au projet actif, ou au projet et à la section indiqués.</translation>
    </message>
    <message>
        <source>The note&apos;s text; &quot;-&quot; reads it from standard input.</source>
        <translation>Le texte de la note&#xa0;; «&#xa0;-&#xa0;» le lit sur l&apos;entrée standard.</translation>
    </message>
    <message>
        <source>TEXT...</source>
        <translation>TEXTE...</translation>
    </message>
    <message>
        <source>&quot;add&quot; needs the note&apos;s text, or &quot;-&quot; to read it from standard input.</source>
        <translation>«&#xa0;add&#xa0;» a besoin du texte de la note, ou de «&#xa0;-&#xa0;» pour le lire sur l&apos;entrée standard.</translation>
    </message>
    <message>
        <source>&quot;-&quot; reads the whole note from standard input: give no other text.</source>
        <translation>«&#xa0;-&#xa0;» lit toute la note sur l&apos;entrée standard&#xa0;: ne donnez pas d&apos;autre texte.</translation>
    </message>
    <message>
        <source>The note is blank.</source>
        <translation>La note est vide.</translation>
    </message>
    <message>
        <source>Prints the open notes of the active project, or of the project given.</source>
        <translation>Affiche les notes en cours du projet actif, ou du projet indiqué.</translation>
    </message>
    <message>
        <source>&quot;list&quot; takes no arguments beside its options.</source>
        <translation>«&#xa0;list&#xa0;» n&apos;accepte aucun argument en dehors de ses options.</translation>
    </message>
    <message>
        <source>Prints the notes of the active project that contain the query.</source>
        <translation>Affiche les notes du projet actif qui contiennent la requête.</translation>
    </message>
    <message>
        <source>What to look for.</source>
        <translation>Ce qu&apos;il faut chercher.</translation>
    </message>
    <message>
        <source>QUERY...</source>
        <translation>REQUÊTE...</translation>
    </message>
    <message>
        <source>&quot;search&quot; needs a query.</source>
        <translation>«&#xa0;search&#xa0;» a besoin d&apos;une requête.</translation>
    </message>
    <message>
        <source>Serves the notes to AI agents over the Model Context Protocol on standard input and output.</source>
        <translation>Sert les notes aux agents d&apos;IA par le Model Context Protocol sur l&apos;entrée et la sortie standard.</translation>
    </message>
    <message>
        <source>&quot;mcp&quot; takes no arguments.</source>
        <translation>«&#xa0;mcp&#xa0;» n&apos;accepte aucun argument.</translation>
    </message>
    <message>
        <source>Unknown command &quot;%1&quot;.</source>
        <translation>Commande inconnue «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Run “vesko --help” for the commands.
</source>
        <translation>«&#xa0;vesko --help&#xa0;» affiche les commandes.
</translation>
    </message>
    <message>
        <source>command</source>
        <translation>commande</translation>
    </message>
    <message>
        <source>[command]</source>
        <translation>[commande]</translation>
    </message>
    <message>
        <source>text</source>
        <translation>texte</translation>
    </message>
    <message>
        <source>query</source>
        <translation>requête</translation>
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
        <translation>Commandes&#xa0;:
  (aucune)      démarrer Vesko, ou afficher le panneau de celui qui tourne
  toggle        afficher ou masquer le panneau
  show          afficher le panneau, la zone de saisie active
  hide          masquer le panneau
  capture       ajouter en note le texte sélectionné de la fenêtre au premier plan
  quick-add     afficher le panneau pour saisir une note
  copy-list     copier en liste les notes sélectionnées, sinon toutes les visibles
  shift         un appui isolé sur Maj, pour le double Maj là où le bureau
                lance une commande au relâchement de Maj (sway&#xa0;: bindsym
                --release Shift_L exec vesko shift)
  shift-press   un appui sur Maj, là où le bureau signale aussi les appuis&#xa0;:
                un Maj tenu trop longtemps ne compte alors pas
  quit          quitter Vesko
  add TEXTE...  ajouter une note («&#xa0;-&#xa0;» la lit sur l&apos;entrée standard)
  list          afficher les notes du projet actif
  search REQ    afficher les notes qui contiennent REQ
  mcp           servir les notes aux agents d&apos;IA (Model Context Protocol)

«&#xa0;vesko COMMANDE --help&#xa0;» affiche les options d&apos;une commande.</translation>
    </message>
</context>
<context>
    <name>DesktopFiles</name>
    <message>
        <source>No Application for “%1”</source>
        <translation>Aucune application pour «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>No File Manager Found</source>
        <translation>Aucun gestionnaire de fichiers trouvé</translation>
    </message>
</context>
<context>
    <name>HotKeyAction</name>
    <message>
        <source>Show or Hide Vesko</source>
        <translation>Afficher ou masquer Vesko</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Capturer la sélection</translation>
    </message>
    <message>
        <source>Add a Note</source>
        <translation>Ajouter une note</translation>
    </message>
    <message>
        <source>Copy Notes as List</source>
        <translation>Copier les notes en liste</translation>
    </message>
</context>
<context>
    <name>InstanceClient</name>
    <message>
        <source>Could not read standard input.</source>
        <translation>Impossible de lire l&apos;entrée standard.</translation>
    </message>
    <message>
        <source>Could not start Vesko (%1): %2.</source>
        <translation>Impossible de démarrer Vesko (%1)&#xa0;: %2.</translation>
    </message>
    <message numerus="yes">
        <source>Vesko runs but did not answer within %n seconds.</source>
        <translation>
            <numerusform>Vesko est lancé mais n&apos;a pas répondu en %n seconde.</numerusform>
            <numerusform>Vesko est lancé mais n&apos;a pas répondu en %n secondes.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Vesko did not start within %n seconds.</source>
        <translation>
            <numerusform>Vesko n&apos;a pas démarré en %n seconde.</numerusform>
            <numerusform>Vesko n&apos;a pas démarré en %n secondes.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Vesko did not answer within %n seconds.</source>
        <translation>
            <numerusform>Vesko n&apos;a pas répondu en %n seconde.</numerusform>
            <numerusform>Vesko n&apos;a pas répondu en %n secondes.</numerusform>
        </translation>
    </message>
    <message>
        <source>Vesko gave an answer that cannot be read.</source>
        <translation>Vesko a donné une réponse illisible.</translation>
    </message>
    <message>
        <source>Vesko did not answer: %1</source>
        <translation>Vesko n&apos;a pas répondu&#xa0;: %1</translation>
    </message>
    <message>
        <source>Vesko did not run “%1”: %2</source>
        <translation>Vesko n&apos;a pas exécuté «&#xa0;%1&#xa0;»&#xa0;: %2</translation>
    </message>
    <message>
        <source>The note is blank: nothing was added.</source>
        <translation>La note est vide&#xa0;: rien n&apos;a été ajouté.</translation>
    </message>
    <message>
        <source>This is not a command for the running Vesko.</source>
        <translation>Ce n&apos;est pas une commande pour le Vesko en cours d&apos;exécution.</translation>
    </message>
    <message numerus="yes">
        <source>Standard input holds more than %n bytes; a note is at most that long.</source>
        <translation>
            <numerusform>L&apos;entrée standard contient plus de %n octet&#xa0;; une note ne peut pas être plus longue.</numerusform>
            <numerusform>L&apos;entrée standard contient plus de %n octets&#xa0;; une note ne peut pas être plus longue.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>KeyCombo</name>
    <message>
        <source>Space</source>
        <translation>Espace</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Retour</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Backspace</source>
        <translation>Effacement</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Suppr</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Échap</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Début</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Fin</translation>
    </message>
    <message>
        <source>PgUp</source>
        <translation>Page préc</translation>
    </message>
    <message>
        <source>PgDown</source>
        <translation>Page suiv</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Haut</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Bas</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Gauche</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Droite</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Entrée</translation>
    </message>
    <message>
        <source>Key %1</source>
        <translation>Touche %1</translation>
    </message>
    <message>
        <source>Super</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Ctrl</source>
        <translation>Ctrl</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Maj</translation>
    </message>
</context>
<context>
    <name>LibraryDecoder</name>
    <message>
        <source>an array</source>
        <translation>un tableau</translation>
    </message>
    <message>
        <source>an object</source>
        <translation>un objet</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>un nombre</translation>
    </message>
    <message>
        <source>a string</source>
        <translation>une chaîne</translation>
    </message>
    <message>
        <source>a boolean</source>
        <translation>un booléen</translation>
    </message>
    <message>
        <source>null</source>
        <translation>null</translation>
    </message>
    <message>
        <source>a value</source>
        <translation>une valeur</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is neither “image” nor “file”.</source>
        <translation>%1 vaut «&#xa0;%2&#xa0;», qui n&apos;est ni «&#xa0;image&#xa0;» ni «&#xa0;file&#xa0;».</translation>
    </message>
    <message>
        <source>%1 is missing.</source>
        <translation>%1 est absent.</translation>
    </message>
    <message>
        <source>%1 is null.</source>
        <translation>%1 est null.</translation>
    </message>
    <message>
        <source>%1 should be %2 but is %3.</source>
        <translation>%1 devrait être %2 mais est %3.</translation>
    </message>
    <message>
        <source>a whole number</source>
        <translation>un nombre entier</translation>
    </message>
    <message>
        <source>%1 is not a whole number in range.</source>
        <translation>%1 n&apos;est pas un nombre entier dans les limites.</translation>
    </message>
    <message>
        <source>a UUID string</source>
        <translation>une chaîne UUID</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is not a UUID.</source>
        <translation>%1 vaut «&#xa0;%2&#xa0;», qui n&apos;est pas un UUID.</translation>
    </message>
    <message>
        <source>a date string</source>
        <translation>une chaîne de date</translation>
    </message>
    <message>
        <source>%1 is “%2”, which is not an ISO-8601 date.</source>
        <translation>%1 vaut «&#xa0;%2&#xa0;», qui n&apos;est pas une date ISO 8601.</translation>
    </message>
    <message>
        <source>The file is not valid UTF-8 text.</source>
        <translation>Le fichier n&apos;est pas du texte UTF-8 valide.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Le fichier est vide.</translation>
    </message>
    <message>
        <source>The file is not valid JSON: %1.</source>
        <translation>Le fichier n&apos;est pas du JSON valide&#xa0;: %1.</translation>
    </message>
    <message>
        <source>the document</source>
        <translation>le document</translation>
    </message>
</context>
<context>
    <name>LoginItem</name>
    <message>
        <source>Could not remove “%1”: %2.</source>
        <translation>Impossible de supprimer «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
</context>
<context>
    <name>MenuBar</name>
    <message>
        <source>Vesko: no open notes in %1</source>
        <translation>Vesko&#xa0;: aucune note en cours dans %1</translation>
    </message>
    <message>
        <source>Vesko: 1 open note in %1</source>
        <translation>Vesko&#xa0;: 1 note en cours dans %1</translation>
    </message>
    <message numerus="yes">
        <source>Vesko: %n open notes in %1</source>
        <translation>
            <numerusform>Vesko&#xa0;: %n note en cours dans %1</numerusform>
            <numerusform>Vesko&#xa0;: %n notes en cours dans %1</numerusform>
        </translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Masquer Vesko</translation>
    </message>
    <message>
        <source>Show Vesko</source>
        <translation>Afficher Vesko</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Capturer la sélection</translation>
    </message>
    <message>
        <source>Add a Note</source>
        <translation>Ajouter une note</translation>
    </message>
    <message>
        <source>Copy All as List</source>
        <translation>Tout copier en liste</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Changer de section…</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projet</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Changer de projet…</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Quitter Vesko</translation>
    </message>
    <message>
        <source>No notes in %1</source>
        <translation>Aucune note dans %1</translation>
    </message>
    <message>
        <source>Section: %1</source>
        <translation>Section&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>PanelMenus</name>
    <message>
        <source>Show Completed</source>
        <translation>Afficher les terminées</translation>
    </message>
    <message>
        <source>Completed at Bottom</source>
        <translation>Terminées en bas</translation>
    </message>
    <message>
        <source>Newest First</source>
        <translation>Plus récentes d&apos;abord</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>Afficher dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Retirer</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Copier en liste</translation>
    </message>
    <message>
        <source>Mark as Not Done</source>
        <translation>Marquer comme non terminée</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Marquer comme terminée</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>Replier</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>Déplier</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Modifier</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>Modifier dans une nouvelle fenêtre</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Fusionner les notes</translation>
    </message>
    <message>
        <source>Split into Notes</source>
        <translation>Scinder en notes</translation>
    </message>
    <message>
        <source>Add Attachment…</source>
        <translation>Ajouter une pièce jointe…</translation>
    </message>
    <message>
        <source>Paste Image or File</source>
        <translation>Coller une image ou un fichier</translation>
    </message>
    <message>
        <source>Attachments</source>
        <translation>Pièces jointes</translation>
    </message>
    <message>
        <source>Move to</source>
        <translation>Déplacer vers</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Nouvelle section…</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projet</translation>
    </message>
    <message>
        <source>Use as Active Section</source>
        <translation>Utiliser comme section active</translation>
    </message>
    <message>
        <source>Rename Section</source>
        <translation>Renommer la section</translation>
    </message>
    <message>
        <source>Expand Section</source>
        <translation>Déplier la section</translation>
    </message>
    <message>
        <source>Collapse Section</source>
        <translation>Replier la section</translation>
    </message>
    <message>
        <source>Select All in Section</source>
        <translation>Tout sélectionner dans la section</translation>
    </message>
    <message>
        <source>Copy Section as List</source>
        <translation>Copier la section en liste</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Monter</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Descendre</translation>
    </message>
    <message>
        <source>Move to Top</source>
        <translation>Placer en haut</translation>
    </message>
    <message>
        <source>Move to Bottom</source>
        <translation>Placer en bas</translation>
    </message>
    <message>
        <source>Delete Section</source>
        <translation>Supprimer la section</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Nouveau projet…</translation>
    </message>
    <message>
        <source>Rename Project…</source>
        <translation>Renommer le projet…</translation>
    </message>
    <message>
        <source>Delete Project</source>
        <translation>Supprimer le projet</translation>
    </message>
    <message>
        <source>Active Section</source>
        <translation>Section active</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Changer de section…</translation>
    </message>
    <message>
        <source>Collapse All Sections</source>
        <translation>Replier toutes les sections</translation>
    </message>
    <message>
        <source>Expand All Sections</source>
        <translation>Déplier toutes les sections</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Affichage</translation>
    </message>
    <message>
        <source>Copy All as List</source>
        <translation>Tout copier en liste</translation>
    </message>
    <message>
        <source>Clear Completed</source>
        <translation>Effacer les notes terminées</translation>
    </message>
    <message>
        <source>Export as Markdown…</source>
        <translation>Exporter en Markdown…</translation>
    </message>
    <message>
        <source>Show Notes File in Files</source>
        <translation>Afficher le fichier de notes dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Dashboard</source>
        <translation>Tableau de bord</translation>
    </message>
    <message>
        <source>All Commands</source>
        <translation>Toutes les commandes</translation>
    </message>
    <message>
        <source>Reset Window Position</source>
        <translation>Réinitialiser la position de la fenêtre</translation>
    </message>
    <message>
        <source>Reset Window Size</source>
        <translation>Réinitialiser la taille de la fenêtre</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts…</source>
        <translation>Raccourcis clavier…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Paramètres…</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Quitter Vesko</translation>
    </message>
</context>
<context>
    <name>PanelPrompts</name>
    <message>
        <source>New Section</source>
        <translation>Nouvelle section</translation>
    </message>
    <message>
        <source>Section name</source>
        <translation>Nom de la section</translation>
    </message>
    <message>
        <source>New Project</source>
        <translation>Nouveau projet</translation>
    </message>
    <message>
        <source>Project name</source>
        <translation>Nom du projet</translation>
    </message>
    <message>
        <source>Rename Project</source>
        <translation>Renommer le projet</translation>
    </message>
</context>
<context>
    <name>QCommandLineParser</name>
    <message>
        <source>Usage: %1</source>
        <translation>Utilisation&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Could not create the folder “%1”: %2.</source>
        <translation>Impossible de créer le dossier «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>The import was cancelled.</source>
        <translation>L&apos;importation a été annulée.</translation>
    </message>
    <message>
        <source>“%1” is not a file on this computer.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un fichier de cet ordinateur.</translation>
    </message>
    <message>
        <source>Could not read “%1”: %2.</source>
        <translation>Impossible de lire «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>The copy of “%1” was cancelled.</source>
        <translation>La copie de «&#xa0;%1&#xa0;» a été annulée.</translation>
    </message>
    <message>
        <source>The library cannot move into its own Attachments folder “%1”. Choose a folder outside it.</source>
        <translation>Les notes ne peuvent pas être déplacées dans leur propre dossier de pièces jointes «&#xa0;%1&#xa0;». Choisissez un dossier en dehors.</translation>
    </message>
    <message>
        <source>“%1” lies inside “%2”.</source>
        <translation>«&#xa0;%1&#xa0;» se trouve dans «&#xa0;%2&#xa0;».</translation>
    </message>
    <message>
        <source>Could not read “%1” back: %2</source>
        <translation>Impossible de relire «&#xa0;%1&#xa0;»&#xa0;: %2</translation>
    </message>
    <message>
        <source>“%1” exists and is not a folder.</source>
        <translation>«&#xa0;%1&#xa0;» existe et n&apos;est pas un dossier.</translation>
    </message>
    <message>
        <source>Could not open the folder “%1”: %2.</source>
        <translation>Impossible d&apos;ouvrir le dossier «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not create “%1”: %2.</source>
        <translation>Impossible de créer «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not set the permissions of “%1”: %2.</source>
        <translation>Impossible de définir les permissions de «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not write “%1”: %2.</source>
        <translation>Impossible d&apos;écrire «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not flush “%1”: %2.</source>
        <translation>Impossible d&apos;écrire «&#xa0;%1&#xa0;» sur le disque&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not close “%1”: %2.</source>
        <translation>Impossible de fermer «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not replace “%1”: %2.</source>
        <translation>Impossible de remplacer «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>“%1” already exists.</source>
        <translation>«&#xa0;%1&#xa0;» existe déjà.</translation>
    </message>
    <message>
        <source>Could not rename “%1”: %2.</source>
        <translation>Impossible de renommer «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not read the link “%1”: %2.</source>
        <translation>Impossible de lire le lien «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>Could not create the link “%1”: %2.</source>
        <translation>Impossible de créer le lien «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
    <message>
        <source>“%1” is a link.</source>
        <translation>«&#xa0;%1&#xa0;» est un lien.</translation>
    </message>
    <message>
        <source>“%1” is not a file.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un fichier.</translation>
    </message>
    <message>
        <source>Could not copy “%1” to “%2”: %3.</source>
        <translation>Impossible de copier «&#xa0;%1&#xa0;» vers «&#xa0;%2&#xa0;»&#xa0;: %3.</translation>
    </message>
    <message>
        <source>The request is not a JSON object.</source>
        <translation>La requête n&apos;est pas un objet JSON.</translation>
    </message>
</context>
<context>
    <name>RowAccessibility</name>
    <message>
        <source>Done</source>
        <translation>Terminée</translation>
    </message>
    <message>
        <source>Not done</source>
        <translation>Non terminée</translation>
    </message>
    <message>
        <source>Mark as not done</source>
        <translation>Marquer comme non terminée</translation>
    </message>
    <message>
        <source>Mark as done</source>
        <translation>Marquer comme terminée</translation>
    </message>
    <message>
        <source>%1. Attachments: %2</source>
        <translation>%1. Pièces jointes&#xa0;: %2</translation>
    </message>
    <message>
        <source>%1 section, %2 remaining</source>
        <translation>Section %1, %2 restantes</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>Vesko Settings</source>
        <translation>Paramètres de Vesko</translation>
    </message>
</context>
<context>
    <name>Shortcut</name>
    <message>
        <source>New Note</source>
        <translation>Nouvelle note</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Nouvelle section…</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Nouveau projet…</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Changer de section…</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Changer de projet…</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Section précédente</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Section suivante</translation>
    </message>
    <message>
        <source>Move Section Up</source>
        <translation>Monter la section</translation>
    </message>
    <message>
        <source>Move Section Down</source>
        <translation>Descendre la section</translation>
    </message>
    <message>
        <source>Collapse or Expand Active Section</source>
        <translation>Replier ou déplier la section active</translation>
    </message>
    <message>
        <source>Jump to Section 1</source>
        <translation>Aller à la section 1</translation>
    </message>
    <message>
        <source>Jump to Section 2</source>
        <translation>Aller à la section 2</translation>
    </message>
    <message>
        <source>Jump to Section 3</source>
        <translation>Aller à la section 3</translation>
    </message>
    <message>
        <source>Jump to Section 4</source>
        <translation>Aller à la section 4</translation>
    </message>
    <message>
        <source>Jump to Section 5</source>
        <translation>Aller à la section 5</translation>
    </message>
    <message>
        <source>Jump to Section 6</source>
        <translation>Aller à la section 6</translation>
    </message>
    <message>
        <source>Jump to Section 7</source>
        <translation>Aller à la section 7</translation>
    </message>
    <message>
        <source>Jump to Section 8</source>
        <translation>Aller à la section 8</translation>
    </message>
    <message>
        <source>Jump to Section 9</source>
        <translation>Aller à la section 9</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Tout sélectionner</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Copier en liste</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Fusionner les notes</translation>
    </message>
    <message>
        <source>Expand or Collapse Note</source>
        <translation>Déplier ou replier la note</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Rétablir</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>Modifier dans une nouvelle fenêtre</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Raccourcis clavier</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Masquer Vesko</translation>
    </message>
    <message>
        <source>Select Previous Note</source>
        <translation>Sélectionner la note précédente</translation>
    </message>
    <message>
        <source>Select Next Note</source>
        <translation>Sélectionner la note suivante</translation>
    </message>
    <message>
        <source>Extend Selection Up</source>
        <translation>Étendre la sélection vers le haut</translation>
    </message>
    <message>
        <source>Extend Selection Down</source>
        <translation>Étendre la sélection vers le bas</translation>
    </message>
    <message>
        <source>First Note</source>
        <translation>Première note</translation>
    </message>
    <message>
        <source>Last Note</source>
        <translation>Dernière note</translation>
    </message>
    <message>
        <source>Mark or Unmark Done</source>
        <translation>Marquer comme terminée ou non terminée</translation>
    </message>
    <message>
        <source>Edit Note</source>
        <translation>Modifier la note</translation>
    </message>
    <message>
        <source>Focus Composer</source>
        <translation>Activer la zone de saisie</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Add Note</source>
        <translation>Ajouter la note</translation>
    </message>
    <message>
        <source>New Line</source>
        <translation>Nouvelle ligne</translation>
    </message>
    <message>
        <source>Create or Use Section</source>
        <translation>Créer ou utiliser une section</translation>
    </message>
    <message>
        <source>Ctrl+Backspace</source>
        <translation>Ctrl+Effacement</translation>
    </message>
    <message>
        <source>Ctrl+Up / Home</source>
        <translation>Ctrl+Haut / Début</translation>
    </message>
    <message>
        <source>Ctrl+Down / End</source>
        <translation>Ctrl+Bas / Fin</translation>
    </message>
    <message>
        <source>Shift+Return</source>
        <translation>Maj+Retour</translation>
    </message>
    <message>
        <source># Name</source>
        <translation># Nom</translation>
    </message>
</context>
<context>
    <name>ShortcutRecorderView</name>
    <message>
        <source>Add a modifier like Ctrl or Alt.</source>
        <translation>Ajoutez une touche de modification comme Ctrl ou Alt.</translation>
    </message>
    <message>
        <source>Already used by “%1”.</source>
        <translation>Déjà utilisé par «&#xa0;%1&#xa0;».</translation>
    </message>
</context>
<context>
    <name>TextOut</name>
    <message>
        <source>Copied as List</source>
        <translation>Copié en liste</translation>
    </message>
    <message>
        <source>Copied</source>
        <translation>Copié</translation>
    </message>
    <message>
        <source>Exported</source>
        <translation>Exporté</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Not saved: %1</source>
        <translation>Non enregistré&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>Vesko::AboutSettingsView</name>
    <message>
        <source>Vesko icon</source>
        <translation>Icône de Vesko</translation>
    </message>
    <message>
        <source>Vesko</source>
        <translation>Vesko</translation>
    </message>
    <message>
        <source>A to-do list, a clipboard, and a scratchpad in one panel. Built for working alongside AI tools.</source>
        <translation>Une liste de tâches, un presse-papiers et un bloc-notes dans un seul panneau. Conçu pour travailler aux côtés des outils d&apos;IA.</translation>
    </message>
    <message>
        <source>Notes stay in a local file</source>
        <translation>Les notes restent dans un fichier local</translation>
    </message>
    <message>
        <source>No tracking, no telemetry</source>
        <translation>Aucun pistage, aucune télémétrie</translation>
    </message>
    <message>
        <source>No account, no sync</source>
        <translation>Aucun compte, aucune synchronisation</translation>
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
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts…</source>
        <translation>Raccourcis clavier…</translation>
    </message>
    <message>
        <source>Quit Vesko</source>
        <translation>Quitter Vesko</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>New Note</source>
        <translation>Nouvelle note</translation>
    </message>
    <message>
        <source>New Section…</source>
        <translation>Nouvelle section…</translation>
    </message>
    <message>
        <source>Switch Section…</source>
        <translation>Changer de section…</translation>
    </message>
    <message>
        <source>New Project…</source>
        <translation>Nouveau projet…</translation>
    </message>
    <message>
        <source>Switch Project…</source>
        <translation>Changer de projet…</translation>
    </message>
    <message>
        <source>Capture Selection</source>
        <translation>Capturer la sélection</translation>
    </message>
    <message>
        <source>Show Vesko</source>
        <translation>Afficher Vesko</translation>
    </message>
    <message>
        <source>Hide Vesko</source>
        <translation>Masquer Vesko</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Modifier</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Rétablir</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notes</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy as List</source>
        <translation>Copier en liste</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Marquer comme terminée</translation>
    </message>
    <message>
        <source>Merge Notes</source>
        <translation>Fusionner les notes</translation>
    </message>
    <message>
        <source>Edit in New Window</source>
        <translation>Modifier dans une nouvelle fenêtre</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Tout sélectionner</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Clear Completed</source>
        <translation>Effacer les notes terminées</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Sections</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Section précédente</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Section suivante</translation>
    </message>
    <message>
        <source>Collapse or Expand Active Section</source>
        <translation>Replier ou déplier la section active</translation>
    </message>
    <message>
        <source>Expand or Collapse Note</source>
        <translation>Déplier ou replier la note</translation>
    </message>
</context>
<context>
    <name>Vesko::ApplicationBus</name>
    <message>
        <source>There is no session bus.</source>
        <translation>Il n&apos;y a pas de bus de session.</translation>
    </message>
    <message>
        <source>Another program owns the name %1.</source>
        <translation>Un autre programme possède le nom %1.</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentActions</name>
    <message>
        <source>Could Not Paste Attachment</source>
        <translation>Impossible de coller la pièce jointe</translation>
    </message>
    <message>
        <source>No Image or File to Paste</source>
        <translation>Aucune image ni aucun fichier à coller</translation>
    </message>
    <message>
        <source>Attachment Added</source>
        <translation>Pièce jointe ajoutée</translation>
    </message>
    <message>
        <source>Could Not Add Attachment</source>
        <translation>Impossible d&apos;ajouter la pièce jointe</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentFileDialog</name>
    <message>
        <source>Add Attachments</source>
        <translation>Ajouter des pièces jointes</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Ajouter</translation>
    </message>
</context>
<context>
    <name>Vesko::AttachmentTile</name>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>Afficher dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Remove Attachment</source>
        <translation>Retirer la pièce jointe</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>Ouvrir %1</translation>
    </message>
</context>
<context>
    <name>Vesko::CaptureEngine</name>
    <message>
        <source>Copied as List</source>
        <translation>Copié en liste</translation>
    </message>
    <message>
        <source>Accessibility Access Needed</source>
        <translation>Accès à l&apos;accessibilité nécessaire</translation>
    </message>
    <message>
        <source>Nothing Selected</source>
        <translation>Rien n&apos;est sélectionné</translation>
    </message>
    <message>
        <source>Capture Failed</source>
        <translation>Échec de la capture</translation>
    </message>
    <message>
        <source>Captured</source>
        <translation>Capturée</translation>
    </message>
</context>
<context>
    <name>Vesko::CaptureSettingsView</name>
    <message>
        <source>Bring the panel forward, or send it away.</source>
        <translation>Afficher le panneau au premier plan, ou le renvoyer.</translation>
    </message>
    <message>
        <source>Open the panel with the composer already focused.</source>
        <translation>Ouvrir le panneau avec la zone de saisie déjà active.</translation>
    </message>
    <message>
        <source>Save whatever text is selected in the app in front.</source>
        <translation>Enregistrer le texte sélectionné dans l&apos;application au premier plan.</translation>
    </message>
    <message>
        <source>Put the selected notes on the clipboard as a list.</source>
        <translation>Placer les notes sélectionnées dans le presse-papiers sous forme de liste.</translation>
    </message>
    <message>
        <source>Grant Access…</source>
        <translation>Accorder l&apos;accès…</translation>
    </message>
    <message>
        <source>Open System Settings…</source>
        <translation>Ouvrir les paramètres du système…</translation>
    </message>
    <message>
        <source>Capture with Shift pressed twice</source>
        <translation>Capturer en appuyant deux fois sur Maj</translation>
    </message>
    <message>
        <source>Bring the panel forward on capture</source>
        <translation>Afficher le panneau au premier plan lors d&apos;une capture</translation>
    </message>
    <message>
        <source>Permission</source>
        <translation>Autorisation</translation>
    </message>
    <message>
        <source>Double Shift</source>
        <translation>Double Maj</translation>
    </message>
    <message>
        <source>Listener</source>
        <translation>Écoute</translation>
    </message>
    <message>
        <source>Time between presses</source>
        <translation>Délai entre les appuis</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Raccourcis</translation>
    </message>
    <message>
        <source>Captured notes</source>
        <translation>Notes capturées</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>Capture works in this session</source>
        <translation>La capture fonctionne dans cette session</translation>
    </message>
    <message>
        <source>Capture is not set up in this session</source>
        <translation>La capture n&apos;est pas configurée dans cette session</translation>
    </message>
    <message>
        <source>Listening</source>
        <translation>À l&apos;écoute</translation>
    </message>
    <message>
        <source>Not listening</source>
        <translation>Pas à l&apos;écoute</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Command for “%1”</source>
        <translation>Commande pour «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Lines for the sway configuration</source>
        <translation>Lignes pour la configuration de sway</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1&#xa0;: %2</translation>
    </message>
    <message>
        <source>Commands that turn on double Shift in KWin</source>
        <translation>Commandes qui activent le double Maj dans KWin</translation>
    </message>
    <message>
        <source>Vesko reads the selected text only when you capture, and watches only the Shift key for double Shift. Nothing is recorded or sent anywhere.</source>
        <translation>Vesko ne lit le texte sélectionné que lorsque vous capturez, et n’observe que la touche Maj pour le double Maj. Rien n’est enregistré ni envoyé nulle part.</translation>
    </message>
</context>
<context>
    <name>Vesko::ComposerView</name>
    <message>
        <source>Add images or files</source>
        <translation>Ajouter des images ou des fichiers</translation>
    </message>
    <message>
        <source>Add Attachment</source>
        <translation>Ajouter une pièce jointe</translation>
    </message>
    <message>
        <source>Add to %1</source>
        <translation>Ajouter à %1</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>Utilisation de %1</translation>
    </message>
</context>
<context>
    <name>Vesko::GeneralSettingsView</name>
    <message>
        <source>Show on all workspaces</source>
        <translation>Afficher sur tous les espaces de travail</translation>
    </message>
    <message>
        <source>Always on top</source>
        <translation>Toujours au premier plan</translation>
    </message>
    <message>
        <source>Show in the system tray</source>
        <translation>Afficher dans la zone de notification</translation>
    </message>
    <message>
        <source>Show in the taskbar</source>
        <translation>Afficher dans la barre des tâches</translation>
    </message>
    <message>
        <source>Open at login</source>
        <translation>Ouvrir à la connexion</translation>
    </message>
    <message>
        <source>Keep Markdown when copying</source>
        <translation>Conserver le Markdown lors de la copie</translation>
    </message>
    <message>
        <source>Panel</source>
        <translation>Panneau</translation>
    </message>
    <message>
        <source>System</source>
        <translation>Système</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Clair</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Sombre</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>Apparence</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Gauche</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Centre</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Droite</translation>
    </message>
    <message>
        <source>Window position</source>
        <translation>Position de la fenêtre</translation>
    </message>
    <message>
        <source>Reset Window Position</source>
        <translation>Réinitialiser la position de la fenêtre</translation>
    </message>
    <message>
        <source>Reset Window Size</source>
        <translation>Réinitialiser la taille de la fenêtre</translation>
    </message>
    <message>
        <source>Choose a preset or drag and resize the window; Vesko remembers both.</source>
        <translation>Choisissez un préréglage ou déplacez et redimensionnez la fenêtre&#xa0;; Vesko retient les deux.</translation>
    </message>
    <message>
        <source>Behaviour</source>
        <translation>Comportement</translation>
    </message>
    <message>
        <source>Lists</source>
        <translation>Listes</translation>
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
        <translation>Aucune puce</translation>
    </message>
    <message>
        <source>Copy as List uses</source>
        <translation>«&#xa0;Copier en liste&#xa0;» utilise</translation>
    </message>
</context>
<context>
    <name>Vesko::NativeInlineTextField</name>
    <message>
        <source>No Guesses Found</source>
        <translation>Aucune suggestion trouvée</translation>
    </message>
</context>
<context>
    <name>Vesko::NoteEditorView</name>
    <message>
        <source>Note text</source>
        <translation>Texte de la note</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Aperçu</translation>
    </message>
    <message>
        <source>Mark as Done</source>
        <translation>Marquer comme terminée</translation>
    </message>
    <message>
        <source>Add Attachment</source>
        <translation>Ajouter une pièce jointe</translation>
    </message>
    <message>
        <source>Add images or files</source>
        <translation>Ajouter des images ou des fichiers</translation>
    </message>
    <message>
        <source>Show or hide the rendered preview</source>
        <translation>Afficher ou masquer l&apos;aperçu rendu</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy this note</source>
        <translation>Copier cette note</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Terminée</translation>
    </message>
</context>
<context>
    <name>Vesko::NoteRequests</name>
    <message>
        <source>Unknown action “%1”.</source>
        <translation>Action inconnue «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Unknown request “%1”.</source>
        <translation>Requête inconnue «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>There are no projects.</source>
        <translation>Il n&apos;y a aucun projet.</translation>
    </message>
    <message>
        <source>There is no project named “%1”.</source>
        <translation>Il n&apos;y a aucun projet nommé «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>The note is blank.</source>
        <translation>La note est vide.</translation>
    </message>
    <message>
        <source>The note could not be added.</source>
        <translation>La note n&apos;a pas pu être ajoutée.</translation>
    </message>
    <message>
        <source>The project “%1” has no section titled “%2”.</source>
        <translation>Le projet «&#xa0;%1&#xa0;» n&apos;a aucune section intitulée «&#xa0;%2&#xa0;».</translation>
    </message>
    <message>
        <source>The query is blank.</source>
        <translation>La requête est vide.</translation>
    </message>
    <message>
        <source>Say whether the notes are done (true or false).</source>
        <translation>Indiquez si les notes sont terminées (true ou false).</translation>
    </message>
    <message>
        <source>No note ids were given.</source>
        <translation>Aucun identifiant de note n&apos;a été donné.</translation>
    </message>
    <message>
        <source>No note has the id “%1”.</source>
        <translation>Aucune note n&apos;a l&apos;identifiant «&#xa0;%1&#xa0;».</translation>
    </message>
    <message numerus="yes">
        <source>The note is too long: at most %n characters.</source>
        <translation>
            <numerusform>La note est trop longue&#xa0;: %n caractère au plus.</numerusform>
            <numerusform>La note est trop longue&#xa0;: %n caractères au plus.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Vesko::NoteRowView</name>
    <message>
        <source>Note</source>
        <translation>Note</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelCommands</name>
    <message>
        <source>Could Not Add Attachment</source>
        <translation>Impossible d&apos;ajouter la pièce jointe</translation>
    </message>
    <message>
        <source>Export as Markdown</source>
        <translation>Exporter en Markdown</translation>
    </message>
    <message>
        <source>Markdown (*.md)</source>
        <translation>Markdown (*.md)</translation>
    </message>
    <message>
        <source>Plain text (*.txt)</source>
        <translation>Texte brut (*.txt)</translation>
    </message>
    <message>
        <source>The notes could not be exported to “%1”.</source>
        <translation>Les notes n&apos;ont pas pu être exportées vers «&#xa0;%1&#xa0;».</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelListView</name>
    <message>
        <source>Notes</source>
        <translation>Notes</translation>
    </message>
    <message>
        <source>Added</source>
        <translation>Ajoutée</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelPromptView</name>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Ajouter</translation>
    </message>
</context>
<context>
    <name>Vesko::PanelRootView</name>
    <message>
        <source>More options</source>
        <translation>Plus d&apos;options</translation>
    </message>
    <message>
        <source>No matches</source>
        <translation>Aucun résultat</translation>
    </message>
    <message>
        <source>Try a different word.</source>
        <translation>Essayez un autre mot.</translation>
    </message>
    <message>
        <source>Nothing here yet</source>
        <translation>Rien ici pour l&apos;instant</translation>
    </message>
    <message>
        <source>Select text anywhere and press Shift twice, or Ctrl+Shift+N for a new section.</source>
        <translation>Sélectionnez du texte n&apos;importe où et appuyez deux fois sur Maj, ou Ctrl+Maj+N pour une nouvelle section.</translation>
    </message>
</context>
<context>
    <name>Vesko::PendingAttachmentStrip</name>
    <message>
        <source>Remove %1</source>
        <translation>Retirer %1</translation>
    </message>
</context>
<context>
    <name>Vesko::ProjectSwitcherView</name>
    <message>
        <source>Switch project</source>
        <translation>Changer de projet</translation>
    </message>
    <message>
        <source>↵ switch · esc close · %1 for a new project</source>
        <translation>↵ changer · Échap fermer · %1 pour un nouveau projet</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>Utilisation de %1</translation>
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
        <translation>Vos dernières modifications n&apos;ont pas pu être enregistrées.</translation>
    </message>
    <message>
        <source>Quit Anyway</source>
        <translation>Quitter quand même</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>Vesko::SaveStatusView</name>
    <message>
        <source>Not saved: %1</source>
        <translation>Non enregistré&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>Vesko::SearchFieldView</name>
    <message>
        <source>Search</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Clear search</source>
        <translation>Effacer la recherche</translation>
    </message>
</context>
<context>
    <name>Vesko::SectionHeaderView</name>
    <message>
        <source>Section name</source>
        <translation>Nom de la section</translation>
    </message>
    <message>
        <source>Active section</source>
        <translation>Section active</translation>
    </message>
    <message>
        <source>Drag to reorder</source>
        <translation>Glisser pour réordonner</translation>
    </message>
</context>
<context>
    <name>Vesko::SectionSwitcherView</name>
    <message>
        <source>Switch section</source>
        <translation>Changer de section</translation>
    </message>
    <message>
        <source>↵ switch · F2 rename · esc close</source>
        <translation>↵ changer · F2 renommer · Échap fermer</translation>
    </message>
    <message>
        <source>Rename Section</source>
        <translation>Renommer la section</translation>
    </message>
    <message>
        <source>Section name</source>
        <translation>Nom de la section</translation>
    </message>
    <message>
        <source>↵ to rename · esc to cancel</source>
        <translation>↵ renommer · Échap annuler</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Renommer</translation>
    </message>
    <message>
        <source>Renamed</source>
        <translation>Renommée</translation>
    </message>
    <message>
        <source>Using %1</source>
        <translation>Utilisation de %1</translation>
    </message>
</context>
<context>
    <name>Vesko::SettingsView</name>
    <message>
        <source>General</source>
        <translation>Général</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Capture</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Stockage</translation>
    </message>
    <message>
        <source>About</source>
        <translation>À propos</translation>
    </message>
</context>
<context>
    <name>Vesko::ShortcutRecorderView</name>
    <message>
        <source>%1 shortcut</source>
        <translation>Raccourci de %1</translation>
    </message>
    <message>
        <source>Remove this shortcut</source>
        <translation>Supprimer ce raccourci</translation>
    </message>
    <message>
        <source>Press keys…</source>
        <translation>Appuyez sur des touches…</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucun</translation>
    </message>
    <message>
        <source>Already used by “%1”.</source>
        <translation>Déjà utilisé par «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Taken by another application</source>
        <translation>Déjà utilisé par une autre application</translation>
    </message>
    <message>
        <source>Not set</source>
        <translation>Non défini</translation>
    </message>
    <message>
        <source>Your desktop keeps this shortcut: click to change it in the desktop&apos;s settings.</source>
        <translation>Votre bureau gère ce raccourci&#xa0;: cliquez pour le modifier dans ses paramètres.</translation>
    </message>
    <message>
        <source>Your desktop keeps this shortcut: change it in the desktop&apos;s settings.</source>
        <translation>Votre bureau gère ce raccourci&#xa0;: modifiez-le dans ses paramètres.</translation>
    </message>
</context>
<context>
    <name>Vesko::ShortcutSheetView</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Raccourcis clavier</translation>
    </message>
    <message>
        <source>esc to close</source>
        <translation>Échap pour fermer</translation>
    </message>
    <message>
        <source>In this window</source>
        <translation>Dans cette fenêtre</translation>
    </message>
    <message>
        <source>While composing</source>
        <translation>Pendant la saisie</translation>
    </message>
    <message>
        <source>SYSTEM-WIDE</source>
        <translation>DANS TOUT LE SYSTÈME</translation>
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
        <translation>Il n&apos;y a pas de dossier privé pour le verrou d&apos;instance.</translation>
    </message>
    <message>
        <source>Could not lock “%1”: %2.</source>
        <translation>Impossible de verrouiller «&#xa0;%1&#xa0;»&#xa0;: %2.</translation>
    </message>
</context>
<context>
    <name>Vesko::StorageSettingsView</name>
    <message>
        <source>Show in Files</source>
        <translation>Afficher dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Move…</source>
        <translation>Déplacer…</translation>
    </message>
    <message>
        <source>Use Default Location</source>
        <translation>Utiliser l&apos;emplacement par défaut</translation>
    </message>
    <message>
        <source>Cancel Move</source>
        <translation>Annuler le déplacement</translation>
    </message>
    <message>
        <source>Moving your notes…</source>
        <translation>Déplacement de vos notes…</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Fichier local</translation>
    </message>
    <message>
        <source>Notes file</source>
        <translation>Fichier de notes</translation>
    </message>
    <message>
        <source>One JSON file on your computer. No sync, no server, no account. Put it in a synced folder if you want it on more than one machine.</source>
        <translation>Un seul fichier JSON sur votre ordinateur. Aucune synchronisation, aucun serveur, aucun compte. Placez-le dans un dossier synchronisé si vous le voulez sur plusieurs machines.</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>Export All as Markdown…</source>
        <translation>Tout exporter en Markdown…</translation>
    </message>
    <message>
        <source>Copy This Project as List</source>
        <translation>Copier ce projet en liste</translation>
    </message>
    <message>
        <source>Housekeeping</source>
        <translation>Entretien</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notes</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projets</translation>
    </message>
    <message>
        <source>Clear Completed in This Project</source>
        <translation>Effacer les notes terminées de ce projet</translation>
    </message>
    <message>
        <source>Copied as List</source>
        <translation>Copié en liste</translation>
    </message>
    <message>
        <source>Move Notes File</source>
        <translation>Déplacer le fichier de notes</translation>
    </message>
    <message>
        <source>Move Here</source>
        <translation>Déplacer ici</translation>
    </message>
    <message>
        <source>Choose where Vesko should keep your notes file.</source>
        <translation>Choisissez où Vesko doit conserver votre fichier de notes.</translation>
    </message>
    <message>
        <source>Moving your notes… %1%</source>
        <translation>Déplacement de vos notes… %1&#xa0;%</translation>
    </message>
    <message>
        <source>%1 in this project</source>
        <translation>%1 dans ce projet</translation>
    </message>
</context>
<context>
    <name>Vesko::Store</name>
    <message>
        <source>There is no backup to restore.</source>
        <translation>Il n&apos;y a aucune sauvegarde à restaurer.</translation>
    </message>
    <message>
        <source>No backup could be read.</source>
        <translation>Aucune sauvegarde n&apos;a pu être lue.</translation>
    </message>
    <message>
        <source>The library is already being moved.</source>
        <translation>Les notes sont déjà en cours de déplacement.</translation>
    </message>
    <message>
        <source>The move was cancelled.</source>
        <translation>Le déplacement a été annulé.</translation>
    </message>
</context>
<context>
    <name>Vesko::SwitcherView</name>
    <message>
        <source>Create “%1”</source>
        <translation>Créer «&#xa0;%1&#xa0;»</translation>
    </message>
</context>
<context>
    <name>Vesko::UnreadableLibraryView</name>
    <message>
        <source>Restore Latest Backup</source>
        <translation>Restaurer la dernière sauvegarde</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>Afficher dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Your notes file could not be read. It was set aside as “%1”.</source>
        <translation>Votre fichier de notes n&apos;a pas pu être lu. Il a été mis de côté sous le nom «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Your notes file could not be read.</source>
        <translation>Votre fichier de notes n&apos;a pas pu être lu.</translation>
    </message>
    <message>
        <source>There is no backup to restore.</source>
        <translation>Il n&apos;y a aucune sauvegarde à restaurer.</translation>
    </message>
</context>
<context>
    <name>Vesko::WindowCloseKeys</name>
    <message>
        <source>Close Window</source>
        <translation>Fermer la fenêtre</translation>
    </message>
</context>
</TS>
