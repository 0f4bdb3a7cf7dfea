<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en_US">
<context>
    <name>halvenor::ActionMenus</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>&amp;Sound</source>
        <translation>&amp;Son</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Aid&amp;e</translation>
    </message>
    <message>
        <source>%1 or %2</source>
        <translation>%1 ou %2</translation>
    </message>
</context>
<context>
    <name>halvenor::Audio</name>
    <message>
        <source>GStreamer is not complete: %1</source>
        <translation>GStreamer n’est pas complet&#xa0;: %1</translation>
    </message>
    <message>
        <source>no such file</source>
        <translation>fichier inexistant</translation>
    </message>
    <message>
        <source>is a folder</source>
        <translation>est un dossier</translation>
    </message>
    <message>
        <source>cannot be read: permission denied</source>
        <translation>ne peut pas être lu&#xa0;: permission refusée</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>est vide</translation>
    </message>
    <message>
        <source>has a name that GStreamer cannot open</source>
        <translation>a un nom que GStreamer ne peut pas ouvrir</translation>
    </message>
    <message>
        <source>GStreamer cannot be started: %1</source>
        <translation>GStreamer ne peut pas être démarré&#xa0;: %1</translation>
    </message>
    <message>
        <source>cannot be found</source>
        <translation>est introuvable</translation>
    </message>
    <message>
        <source>does not support seeking</source>
        <translation>ne permet pas de se déplacer</translation>
    </message>
    <message>
        <source>cannot be read to its end</source>
        <translation>ne peut pas être lu jusqu’à la fin</translation>
    </message>
    <message>
        <source>contains no sound</source>
        <translation>ne contient pas de son</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>ne peut pas être lu</translation>
    </message>
    <message>
        <source>isn&apos;t a supported audio file</source>
        <translation>n’est pas un fichier audio pris en charge</translation>
    </message>
    <message>
        <source>needs a decoder that is not installed</source>
        <translation>nécessite un décodeur qui n’est pas installé</translation>
    </message>
    <message>
        <source>is damaged</source>
        <translation>est endommagé</translation>
    </message>
    <message>
        <source>is encrypted</source>
        <translation>est chiffré</translation>
    </message>
    <message>
        <source>names a file of this computer, which is not opened</source>
        <translation>désigne un fichier de cet ordinateur, qui n’est pas ouvert</translation>
    </message>
    <message>
        <source>cannot be found (HTTP %1)</source>
        <translation>est introuvable (HTTP %1)</translation>
    </message>
    <message>
        <source>is refused by its server (HTTP %1)</source>
        <translation>est refusé par son serveur (HTTP %1)</translation>
    </message>
    <message>
        <source>needs a part of GStreamer that is not installed: %1</source>
        <translation>nécessite une partie de GStreamer qui n’est pas installée&#xa0;: %1</translation>
    </message>
    <message>
        <source>is a web page, not sound</source>
        <translation>est une page web, pas du son</translation>
    </message>
    <message>
        <source>the stream has ended</source>
        <translation>le flux est terminé</translation>
    </message>
    <message>
        <source>nothing came for 10 seconds</source>
        <translation>rien n’est arrivé depuis 10 secondes</translation>
    </message>
    <message>
        <source>does not answer</source>
        <translation>ne répond pas</translation>
    </message>
    <message>
        <source>%1 of its %2 seconds of sound are missing or damaged</source>
        <translation>%1 secondes de son sur %2 manquent ou sont endommagées</translation>
    </message>
</context>
<context>
    <name>halvenor::ConfigurationWindow</name>
    <message>
        <source>Settings — Halvenor</source>
        <translation>Configuration — Halvenor</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Enregistrer</translation>
    </message>
    <message>
        <source>Save these settings for next time</source>
        <translation>Enregistrer ces réglages pour la prochaine fois</translation>
    </message>
    <message>
        <source>The settings are saved.</source>
        <translation>Les réglages sont enregistrés.</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>Restore the previous settings and close</source>
        <translation>Rétablir les réglages précédents et fermer</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Keep these settings and close</source>
        <translation>Garder ces réglages et fermer</translation>
    </message>
    <message>
        <source>The settings could not be saved (error %1).</source>
        <translation>Les réglages n’ont pas pu être enregistrés (erreur %1).</translation>
    </message>
    <message>
        <source>The full-screen size was refused (error %1).</source>
        <translation>La taille du plein écran a été refusée (erreur %1).</translation>
    </message>
    <message>
        <source>The settings could not be saved. Close again to close without saving.</source>
        <translation>Les réglages n’ont pas pu être enregistrés. Fermer encore une fois pour fermer sans enregistrer.</translation>
    </message>
</context>
<context>
    <name>halvenor::ControlServer</name>
    <message>
        <source>Commands of --control cannot be received: %1</source>
        <translation>Les commandes de --control ne peuvent pas être reçues&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>halvenor::FailureTally</name>
    <message numerus="yes">
        <source>%n more could not be played</source>
        <translation>
            <numerusform>%n autre élément n’a pas pu être lu</numerusform>
            <numerusform>%n autres éléments n’ont pas pu être lus</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stopped: %n entries in a row could not be played</source>
        <translation>
            <numerusform>Arrêt&#xa0;: %n élément n’a pas pu être lu</numerusform>
            <numerusform>Arrêt&#xa0;: %n éléments de suite n’ont pas pu être lus</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>None of the %n entries could be played</source>
        <translation>
            <numerusform>Le %n élément n’a pas pu être lu</numerusform>
            <numerusform>Aucun des %n éléments n’a pu être lu</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>halvenor::Files</name>
    <message>
        <source>is a folder</source>
        <translation>est un dossier</translation>
    </message>
    <message>
        <source>is a link</source>
        <translation>est un lien</translation>
    </message>
    <message>
        <source>is not a regular file</source>
        <translation>n’est pas un fichier ordinaire</translation>
    </message>
    <message>
        <source>is larger than %1 MB</source>
        <translation>dépasse %1 Mo</translation>
    </message>
    <message>
        <source>cannot write to %1: %2</source>
        <translation>impossible d’écrire dans %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>another program is busy with it</source>
        <translation>un autre programme est en train de l’utiliser</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>impossible d’écrire %1&#xa0;: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::FullScreen</name>
    <message>
        <source>Full Screen &amp;On</source>
        <translation>Plein écran &amp;sur l’écran</translation>
    </message>
    <message>
        <source>Full Screen Si&amp;ze</source>
        <translation>&amp;Taille du plein écran</translation>
    </message>
    <message>
        <source>Size the &amp;Visualizer Asks For, Scaled Up</source>
        <translation>Taille demandée par la &amp;visualisation, agrandie</translation>
    </message>
    <message>
        <source>Full &amp;Resolution of the Screen</source>
        <translation>&amp;Résolution complète de l’écran</translation>
    </message>
    <message>
        <source>Screen of the &amp;Window</source>
        <translation>Écran de la &amp;fenêtre</translation>
    </message>
    <message>
        <source>%1, %2 × %3</source>
        <translation>%1, %2 × %3</translation>
    </message>
</context>
<context>
    <name>halvenor::KeysCard</name>
    <message>
        <source>Keyboard shortcuts</source>
        <translation>Raccourcis clavier</translation>
    </message>
    <message>
        <source>The visualizer has more keys: &lt;b&gt;h&lt;/b&gt; shows them, &lt;b&gt;c&lt;/b&gt; opens its settings.&lt;br&gt;Press any key or click to close this card. Press &lt;b&gt;F1&lt;/b&gt; to show it again.</source>
        <translation>La visualisation a d’autres touches&#xa0;: &lt;b&gt;h&lt;/b&gt; les affiche, &lt;b&gt;c&lt;/b&gt; ouvre ses réglages.&lt;br&gt;Une touche quelconque ou un clic ferme cette carte. &lt;b&gt;F1&lt;/b&gt; l’affiche à nouveau.</translation>
    </message>
</context>
<context>
    <name>halvenor::Listening</name>
    <message>
        <source>Connecting</source>
        <translation>Connexion en cours</translation>
    </message>
    <message>
        <source>No signal</source>
        <translation>Aucun signal</translation>
    </message>
    <message>
        <source>The output is muted</source>
        <translation>La sortie est muette</translation>
    </message>
    <message>
        <source>The device is gone, waiting</source>
        <translation>Le périphérique a disparu, en attente</translation>
    </message>
    <message>
        <source>No sound server, waiting</source>
        <translation>Aucun serveur de son, en attente</translation>
    </message>
    <message>
        <source>The source %1 is not available. Listening to the default output until it is.</source>
        <translation>La source %1 n’est pas disponible. En attendant, la sortie par défaut est écoutée.</translation>
    </message>
</context>
<context>
    <name>halvenor::LiveSettings</name>
    <message>
        <source>The autopilot is on, so presets no longer change automatically.</source>
        <translation>Le pilote automatique est actif, les préréglages ne changent donc plus automatiquement.</translation>
    </message>
    <message>
        <source>The look was changed, so the smooth change has ended.</source>
        <translation>L’apparence a été modifiée, la transition douce est donc terminée.</translation>
    </message>
    <message>
        <source>A preset was chosen, so the autopilot is off.</source>
        <translation>Un préréglage a été choisi, le pilote automatique est donc désactivé.</translation>
    </message>
    <message>
        <source>Presets change automatically, so the autopilot is off.</source>
        <translation>Les préréglages changent automatiquement, le pilote automatique est donc désactivé.</translation>
    </message>
</context>
<context>
    <name>halvenor::MainWindow</name>
    <message>
        <source>The visualizer gets every key without Ctrl first; press h to see its keys.</source>
        <translation>La visualisation reçoit d’abord toute touche sans Ctrl&#xa0;; h affiche ses touches.</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Éléments &amp;récents</translation>
    </message>
    <message>
        <source>The visualizer&apos;s settings window cannot be opened (error %1)</source>
        <translation>La fenêtre de configuration de la visualisation ne peut pas être ouverte (erreur %1)</translation>
    </message>
    <message>
        <source>About Halvenor</source>
        <translation>À propos de Halvenor</translation>
    </message>
    <message>
        <source>&lt;h3&gt;Halvenor %1&lt;/h3&gt;&lt;p&gt;Turns music into a moving picture: what this computer plays, your own files and internet radio.&lt;/p&gt;&lt;p&gt;Copyright 2026 the Halvenor authors. MIT License.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Halvenor %1&lt;/h3&gt;&lt;p&gt;Transforme la musique en image animée&#xa0;: ce que joue cet ordinateur, des fichiers personnels et la radio par Internet.&lt;/p&gt;&lt;p&gt;Copyright 2026 les auteurs de Halvenor. Licence MIT.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>%1 - %2</source>
        <translation>%1 - %2</translation>
    </message>
    <message>
        <source>The picture cannot be shown</source>
        <translation>L’image ne peut pas être affichée</translation>
    </message>
    <message>
        <source>The picture cannot be shown: %1</source>
        <translation>L’image ne peut pas être affichée&#xa0;: %1</translation>
    </message>
    <message>
        <source>The visualizer reports a problem: %1</source>
        <translation>La visualisation signale un problème&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>halvenor::MessageLine</name>
    <message>
        <source>All Messages</source>
        <translation>Tous les messages</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Messages</translation>
    </message>
</context>
<context>
    <name>halvenor::Opening</name>
    <message>
        <source>Open Files</source>
        <translation>Ouvrir des fichiers</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Ouvrir un dossier</translation>
    </message>
    <message>
        <source>Audio and playlists (%1)</source>
        <translation>Audio et listes de lecture (%1)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>Open Address</source>
        <translation>Ouvrir une adresse</translation>
    </message>
    <message>
        <source>Address of an internet radio station or of any other audio:</source>
        <translation>Adresse d’une station de radio par Internet ou de tout autre contenu audio&#xa0;:</translation>
    </message>
    <message>
        <source>No Recent Media</source>
        <translation>Aucun média récent</translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Vider la liste</translation>
    </message>
</context>
<context>
    <name>halvenor::Player</name>
    <message>
        <source>No signal: %1 is paused</source>
        <translation>Aucun signal&#xa0;: %1 est en pause</translation>
    </message>
    <message>
        <source>Connection lost, reconnecting</source>
        <translation>Connexion perdue, nouvel essai</translation>
    </message>
    <message>
        <source>Opening</source>
        <translation>Ouverture en cours</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>En pause</translation>
    </message>
    <message>
        <source>No data, waiting</source>
        <translation>Aucune donnée, en attente</translation>
    </message>
    <message>
        <source>Silence</source>
        <translation>Silence</translation>
    </message>
    <message>
        <source>Nothing is playing</source>
        <translation>Aucune lecture en cours</translation>
    </message>
</context>
<context>
    <name>halvenor::Playlist</name>
    <message>
        <source>Further problems of this kind: %1</source>
        <translation>Autres problèmes de ce type&#xa0;: %1</translation>
    </message>
    <message>
        <source>Too many missing files; stopped checking</source>
        <translation>Trop de fichiers manquants&#xa0;; vérification interrompue</translation>
    </message>
    <message>
        <source>only the first %1 entries were taken</source>
        <translation>seules les %1 premières entrées ont été retenues</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>ne peut pas être lu</translation>
    </message>
    <message>
        <source>an entry is not there: %1</source>
        <translation>une entrée n’existe pas&#xa0;: %1</translation>
    </message>
    <message>
        <source>is not a playlist</source>
        <translation>n’est pas une liste de lecture</translation>
    </message>
    <message>
        <source>lies in too many other lists</source>
        <translation>est imbriquée dans trop d’autres listes</translation>
    </message>
    <message>
        <source>names itself, or is named twice</source>
        <translation>se cite elle-même ou est citée deux fois</translation>
    </message>
    <message>
        <source>is too large for a playlist</source>
        <translation>est trop volumineux pour une liste de lecture</translation>
    </message>
    <message>
        <source>an entry is no address: %1</source>
        <translation>une entrée n’est pas une adresse&#xa0;: %1</translation>
    </message>
    <message>
        <source>is damaged</source>
        <translation>est endommagé</translation>
    </message>
</context>
<context>
    <name>halvenor::PlaylistFetch</name>
    <message>
        <source>%1 does not answer</source>
        <translation>%1 ne répond pas</translation>
    </message>
    <message>
        <source>%1 is too large for a playlist</source>
        <translation>%1 est trop volumineux pour une liste de lecture</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetChooser</name>
    <message>
        <source>My Look</source>
        <translation>Mon apparence</translation>
    </message>
    <message>
        <source>The look was not saved: %1. Check that there is free space and that you may write there, then press s again.</source>
        <translation>L’apparence n’a pas été enregistrée&#xa0;: %1. Vérifier qu’il reste de l’espace et que l’écriture y est permise, puis appuyer de nouveau sur s.</translation>
    </message>
    <message>
        <source>Saved this look as &quot;%1&quot;.</source>
        <translation>Cette apparence est enregistrée sous «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>How presets change could not be saved in %1.</source>
        <translation>La façon dont changent les préréglages n’a pas pu être enregistrée dans %1.</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetDelegate</name>
    <message>
        <source>Name of the Preset</source>
        <translation>Nom du préréglage</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetList</name>
    <message>
        <source>Presets</source>
        <translation>Préréglages</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetModel</name>
    <message>
        <source>, favorite</source>
        <translation>, favori</translation>
    </message>
    <message>
        <source>, chosen</source>
        <translation>, choisi</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetPanel</name>
    <message>
        <source>Previous Preset</source>
        <translation>Préréglage précédent</translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <translation>&amp;Précédent</translation>
    </message>
    <message>
        <source>Next Preset</source>
        <translation>Préréglage suivant</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Suivant</translation>
    </message>
    <message>
        <source>Random Preset</source>
        <translation>Préréglage aléatoire</translation>
    </message>
    <message>
        <source>&amp;Random</source>
        <translation>&amp;Aléatoire</translation>
    </message>
    <message>
        <source>Add the Current Look</source>
        <translation>Ajouter l’apparence actuelle</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>A&amp;jouter</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Dupliquer</translation>
    </message>
    <message>
        <source>Dupl&amp;icate</source>
        <translation>&amp;Dupliquer</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Renommer</translation>
    </message>
    <message>
        <source>Replace with the Current Look</source>
        <translation>Remplacer par l’apparence actuelle</translation>
    </message>
    <message>
        <source>Favorite</source>
        <translation>Favori</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>D&amp;elete</source>
        <translation>Suppri&amp;mer</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Défaire</translation>
    </message>
    <message>
        <source>Und&amp;o</source>
        <translation>Dé&amp;faire</translation>
    </message>
    <message>
        <source>Restore Factory Presets</source>
        <translation>Rétablir les préréglages fournis</translation>
    </message>
    <message>
        <source>Import...</source>
        <translation>Importer...</translation>
    </message>
    <message>
        <source>Export This Preset...</source>
        <translation>Exporter ce préréglage...</translation>
    </message>
    <message>
        <source>Export All Presets...</source>
        <translation>Exporter tous les préréglages...</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Search presets</source>
        <translation>Rechercher un préréglage</translation>
    </message>
    <message>
        <source>Show only favorites</source>
        <translation>N’afficher que les favoris</translation>
    </message>
    <message>
        <source>&amp;More</source>
        <translation>Pl&amp;us</translation>
    </message>
    <message>
        <source>More preset actions</source>
        <translation>Autres actions sur les préréglages</translation>
    </message>
    <message>
        <source>Changing Presets</source>
        <translation>Changement de préréglage</translation>
    </message>
    <message>
        <source>Manua&amp;l</source>
        <translation>Manue&amp;l</translation>
    </message>
    <message>
        <source>Automaticall&amp;y, every</source>
        <translation>Aut&amp;omatique, toutes les</translation>
    </message>
    <message>
        <source>Random or&amp;der</source>
        <translation>Ordre aléatoi&amp;re</translation>
    </message>
    <message>
        <source>Fa&amp;vorites only</source>
        <translation>Fa&amp;voris seuls</translation>
    </message>
    <message>
        <source>Manual: presets change by hand</source>
        <translation>Manuel&#xa0;: les préréglages changent à la main</translation>
    </message>
    <message>
        <source>Presets change automatically</source>
        <translation>Les préréglages changent automatiquement</translation>
    </message>
    <message>
        <source>Seconds between preset changes</source>
        <translation>Secondes entre les changements</translation>
    </message>
    <message>
        <source>Duration of a smooth change in seconds</source>
        <translation>Durée d’une transition douce en secondes</translation>
    </message>
    <message>
        <source>Random order</source>
        <translation>Ordre aléatoire</translation>
    </message>
    <message>
        <source>Use only favorites</source>
        <translation>N’utiliser que les favoris</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>Smoo&amp;th change</source>
        <translation>&amp;Transition douce</translation>
    </message>
    <message>
        <source>Undo: %1</source>
        <translation>Défaire&#xa0;: %1</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is deleted. %2 brings it back.</source>
        <translation>«&#xa0;%1&#xa0;» est supprimé. %2 le rétablit.</translation>
    </message>
    <message>
        <source>Undone: %1</source>
        <translation>Défait&#xa0;: %1</translation>
    </message>
    <message>
        <source>The factory presets are restored.</source>
        <translation>Les préréglages fournis sont rétablis.</translation>
    </message>
    <message>
        <source>Presets (*.preset)</source>
        <translation>Préréglages (*.preset)</translation>
    </message>
    <message>
        <source>All Files (*)</source>
        <translation>Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>Import Presets</source>
        <translation>Importer des préréglages</translation>
    </message>
    <message>
        <source>One preset imported.</source>
        <translation>Un préréglage importé.</translation>
    </message>
    <message numerus="yes">
        <source>%n presets imported.</source>
        <translation>
            <numerusform>%n préréglage importé.</numerusform>
            <numerusform>%n préréglages importés.</numerusform>
        </translation>
    </message>
    <message>
        <source>Halvenor Presets</source>
        <translation>Préréglages Halvenor</translation>
    </message>
    <message>
        <source>Export Presets</source>
        <translation>Exporter des préréglages</translation>
    </message>
    <message>
        <source>Exported to %1.</source>
        <translation>Exporté dans %1.</translation>
    </message>
</context>
<context>
    <name>halvenor::Presets</name>
    <message>
        <source>is not a preset file</source>
        <translation>n’est pas un fichier de préréglages</translation>
    </message>
    <message>
        <source>has %1 twice</source>
        <translation>contient %1 deux fois</translation>
    </message>
    <message>
        <source>is in a newer format (%1; this version reads %2)</source>
        <translation>est dans un format plus récent (%1&#xa0;; cette version lit %2)</translation>
    </message>
    <message>
        <source>is not a preset file: it is empty</source>
        <translation>n’est pas un fichier de préréglages&#xa0;: il est vide</translation>
    </message>
    <message>
        <source>is not a preset file: it is not text</source>
        <translation>n’est pas un fichier de préréglages&#xa0;: ce n’est pas du texte</translation>
    </message>
    <message>
        <source>its files</source>
        <translation>ses fichiers</translation>
    </message>
    <message>
        <source>has a preset without a name, [%1]</source>
        <translation>contient un préréglage sans nom, [%1]</translation>
    </message>
    <message>
        <source>has a bad value in &quot;%1&quot;: %2</source>
        <translation>contient une valeur incorrecte dans «&#xa0;%1&#xa0;»&#xa0;: %2</translation>
    </message>
    <message>
        <source>contains no preset</source>
        <translation>ne contient aucun préréglage</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>impossible d’écrire %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>there is no preset to write</source>
        <translation>il n’y a aucun préréglage à écrire</translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation>ce n’est pas un fichier ordinaire</translation>
    </message>
    <message>
        <source>There is nothing to undo.</source>
        <translation>Il n’y a rien à défaire.</translation>
    </message>
    <message>
        <source>A preset needs a name.</source>
        <translation>Un préréglage doit avoir un nom.</translation>
    </message>
    <message>
        <source>There is already a preset called &quot;%1&quot;.</source>
        <translation>Il existe déjà un préréglage nommé «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>There is no preset &quot;%1&quot;.</source>
        <translation>Il n’existe pas de préréglage «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Add &quot;%1&quot;</source>
        <translation>Ajouter «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Duplicate &quot;%1&quot;</source>
        <translation>Dupliquer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Rename &quot;%1&quot;</source>
        <translation>Renommer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Change &quot;%1&quot;</source>
        <translation>Modifier «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Delete &quot;%1&quot;</source>
        <translation>Supprimer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Mark &quot;%1&quot;</source>
        <translation>Mettre «&#xa0;%1&#xa0;» en favori</translation>
    </message>
    <message>
        <source>Unmark &quot;%1&quot;</source>
        <translation>Retirer «&#xa0;%1&#xa0;» des favoris</translation>
    </message>
    <message>
        <source>Restore Factory Presets</source>
        <translation>Rétablir les préréglages fournis</translation>
    </message>
    <message>
        <source>Import &quot;%1&quot;</source>
        <translation>Importer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>cannot write %1: it is the folder of the presets</source>
        <translation>impossible d’écrire %1&#xa0;: c’est le dossier des préréglages</translation>
    </message>
    <message>
        <source>contains several presets: import it instead</source>
        <translation>contient plusieurs préréglages&#xa0;: l’importer plutôt</translation>
    </message>
    <message>
        <source>has a name other than a-z, 0-9, - and _: rename or import it</source>
        <translation>a un nom fait d’autre chose que a-z, 0-9, - et _&#xa0;: le renommer ou l’importer</translation>
    </message>
    <message>
        <source>%1: %2; favorites and removed presets are unknown</source>
        <translation>%1&#xa0;: %2&#xa0;; les favoris et les préréglages supprimés sont inconnus</translation>
    </message>
    <message>
        <source>cannot write to %1: %2</source>
        <translation>impossible d’écrire dans %1&#xa0;: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::ProgramSettings</name>
    <message>
        <source>Some settings in %1 cannot be read. Correct the file or remove it.</source>
        <translation>Certains réglages de %1 ne peuvent pas être lus. Corriger le fichier ou le supprimer.</translation>
    </message>
    <message>
        <source>The settings cannot be saved in %1. Check that there is space and that you may write there.</source>
        <translation>Les réglages ne peuvent pas être enregistrés dans %1. Vérifier qu’il reste de l’espace et que l’écriture y est permise.</translation>
    </message>
</context>
<context>
    <name>halvenor::QueuePlayback</name>
    <message>
        <source>%1 contains nothing that can be played</source>
        <translation>%1 ne contient rien qui puisse être lu</translation>
    </message>
</context>
<context>
    <name>halvenor::ScreenSaver</name>
    <message>
        <source>Showing music in full screen</source>
        <translation>Musique affichée en plein écran</translation>
    </message>
</context>
<context>
    <name>halvenor::SettingField</name>
    <message>
        <source>Picture</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Tracé</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Couleurs</translation>
    </message>
    <message>
        <source>Texts</source>
        <translation>Textes</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Écran</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>Linéaire</translation>
    </message>
    <message>
        <source>Square root</source>
        <translation>Racine carrée</translation>
    </message>
    <message>
        <source>Logarithmic</source>
        <translation>Logarithmique</translation>
    </message>
    <message>
        <source>Blended</source>
        <translation>Mélangée</translation>
    </message>
    <message>
        <source>s</source>
        <translation>s</translation>
    </message>
    <message>
        <source>Always</source>
        <translation>Toujours</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>i/s</translation>
    </message>
    <message>
        <source>Unlimited</source>
        <translation>Illimitée</translation>
    </message>
    <message>
        <source>Intensity</source>
        <translation>Intensité</translation>
    </message>
    <message>
        <source>Fade</source>
        <translation>Fondu</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Zoom Rotation</source>
        <translation>Rotation du zoom</translation>
    </message>
    <message>
        <source>Lines</source>
        <translation>Lignes</translation>
    </message>
    <message>
        <source>Inner Color</source>
        <translation>Couleur intérieure</translation>
    </message>
    <message>
        <source>Outer Color</source>
        <translation>Couleur extérieure</translation>
    </message>
    <message>
        <source>Smoothing</source>
        <translation>Lissage</translation>
    </message>
    <message>
        <source>Glow</source>
        <translation>Lueur</translation>
    </message>
    <message>
        <source>Color Cycle</source>
        <translation>Cycle de couleurs</translation>
    </message>
    <message>
        <source>Sharp Overlay</source>
        <translation>Superposition nette</translation>
    </message>
    <message>
        <source>Show Frame Rate</source>
        <translation>Afficher la cadence</translation>
    </message>
    <message>
        <source>Frequency Scale</source>
        <translation>Échelle de fréquence</translation>
    </message>
    <message>
        <source>Full Screen Width</source>
        <translation>Largeur plein écran</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>pixels</translation>
    </message>
    <message>
        <source>Full Screen Height</source>
        <translation>Hauteur plein écran</translation>
    </message>
    <message>
        <source>Title Duration</source>
        <translation>Durée des titres</translation>
    </message>
    <message>
        <source>Frequency Labels</source>
        <translation>Repères de fréquence</translation>
    </message>
    <message>
        <source>Autopilot</source>
        <translation>Pilote automatique</translation>
    </message>
    <message>
        <source>Vertical Layout</source>
        <translation>Disposition verticale</translation>
    </message>
    <message>
        <source>Font Size</source>
        <translation>Taille de police</translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation>Cadence d’images</translation>
    </message>
</context>
<context>
    <name>halvenor::SettingsPage</name>
    <message>
        <source>Use This Screen&apos;s Size</source>
        <translation>Taille de cet écran</translation>
    </message>
</context>
<context>
    <name>halvenor::SignalLine</name>
    <message>
        <source>Signal</source>
        <translation>Signal</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Niveau</translation>
    </message>
    <message>
        <source>Choose Source... (O)</source>
        <translation>Choisir la source... (O)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1&#xa0;: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::SourceMenu</name>
    <message>
        <source>&amp;What This Computer Plays</source>
        <translation>Ce que &amp;joue cet ordinateur</translation>
    </message>
    <message>
        <source>Audio &amp;Delay...</source>
        <translation>&amp;Retard audio...</translation>
    </message>
    <message>
        <source>Microphones</source>
        <translation>Microphones</translation>
    </message>
    <message>
        <source>Outputs</source>
        <translation>Sorties</translation>
    </message>
    <message>
        <source>Audio Delay</source>
        <translation>Retard audio</translation>
    </message>
    <message>
        <source>Delay the picture by this many milliseconds, in addition to the
latency that %1 reports:</source>
        <translation>Retarder l’image de ce nombre de millisecondes, en plus de la
latence qu’indique %1&#xa0;:</translation>
    </message>
</context>
<context>
    <name>halvenor::TransportBar</name>
    <message>
        <source>Transport</source>
        <translation>Commandes de lecture</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Précédent</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Suivant</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Couper le son</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volume</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Unmute</source>
        <translation>Rétablir le son</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>halvenor::UserActions</name>
    <message>
        <source>&amp;Open Files...</source>
        <translation>&amp;Ouvrir des fichiers...</translation>
    </message>
    <message>
        <source>Open &amp;Folder...</source>
        <translation>Ouvrir un &amp;dossier...</translation>
    </message>
    <message>
        <source>Open &amp;Address...</source>
        <translation>Ouvrir une &amp;adresse...</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Play or Pause</source>
        <translation>&amp;Lecture ou pause</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Arrêter</translation>
    </message>
    <message>
        <source>P&amp;revious</source>
        <translation>&amp;Précédent</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Suivant</translation>
    </message>
    <message>
        <source>&amp;Back 5 Seconds</source>
        <translation>&amp;Reculer de 5 secondes</translation>
    </message>
    <message>
        <source>&amp;Forward 5 Seconds</source>
        <translation>A&amp;vancer de 5 secondes</translation>
    </message>
    <message>
        <source>Volume &amp;Up</source>
        <translation>A&amp;ugmenter le volume</translation>
    </message>
    <message>
        <source>Volume &amp;Down</source>
        <translation>&amp;Diminuer le volume</translation>
    </message>
    <message>
        <source>&amp;Mute</source>
        <translation>Couper le so&amp;n</translation>
    </message>
    <message>
        <source>&amp;Choose Source...</source>
        <translation>&amp;Choisir la source...</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Plein écran</translation>
    </message>
    <message>
        <source>&amp;Leave Full Screen</source>
        <translation>&amp;Quitter le plein écran</translation>
    </message>
    <message>
        <source>&amp;Transport Bar</source>
        <translation>&amp;Barre de lecture</translation>
    </message>
    <message>
        <source>Keep &amp;Drawing When Idle</source>
        <translation>&amp;Continuer à dessiner au repos</translation>
    </message>
    <message>
        <source>&amp;Configure %1...</source>
        <translation>Con&amp;figurer %1...</translation>
    </message>
    <message>
        <source>&amp;Keyboard Shortcuts</source>
        <translation>&amp;Raccourcis clavier</translation>
    </message>
    <message>
        <source>&amp;About Halvenor</source>
        <translation>À &amp;propos de Halvenor</translation>
    </message>
</context>
<context>
    <name>halvenor::Visualizer</name>
    <message>
        <source>The visualizer&apos;s settings cannot be read, so it starts with its defaults: %1.</source>
        <translation>Les réglages de la visualisation ne peuvent pas être lus, elle démarre donc avec ses valeurs par défaut&#xa0;: %1.</translation>
    </message>
    <message>
        <source>The visualizer&apos;s settings cannot be saved: %1. Check that there is free space and that you may write there.</source>
        <translation>Les réglages de la visualisation ne peuvent pas être enregistrés&#xa0;: %1. Vérifier qu’il reste de l’espace et que l’écriture y est permise.</translation>
    </message>
</context>
</TS>
