<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>About</name>
    <message>
        <source>About Parcelo</source>
        <translation>À propos de Parcelo</translation>
    </message>
    <message>
        <source>&lt;p align=&quot;center&quot;&gt;Turns files into an archive in one gesture.&lt;/p&gt;</source>
        <translation>&lt;p align=&quot;center&quot;&gt;Transforme des fichiers en archive d’un seul geste.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Send Mail</source>
        <translation>&amp;Envoyer un e-mail</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>Visiter le site &amp;web</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>Écrire un &amp;commentaire</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Copyright © 2026 The Parcelo developers
Free software under the MIT License</source>
        <translation>Copyright © 2026 Les développeurs de Parcelo
Logiciel libre sous licence MIT</translation>
    </message>
    <message>
        <source>Made with %1</source>
        <translation>Utilise %1</translation>
    </message>
</context>
<context>
    <name>AccessoryView</name>
    <message>
        <source>&amp;Archive type:</source>
        <translation>&amp;Type d’archive :</translation>
    </message>
    <message>
        <source>Archive type</source>
        <translation>Type d’archive</translation>
    </message>
    <message>
        <source>Zip</source>
        <translation>Zip</translation>
    </message>
    <message>
        <source>Zip with extended attributes</source>
        <translation>Zip avec attributs étendus</translation>
    </message>
</context>
<context>
    <name>AdvertTextView</name>
    <message>
        <source>About the maker&apos;s products</source>
        <translation>À propos des produits de l’éditeur</translation>
    </message>
    <message>
        <source>Brought to you by </source>
        <translation>Proposé par </translation>
    </message>
    <message>
        <source>Puts your downloads folder in order</source>
        <translation>Range votre dossier de téléchargements</translation>
    </message>
    <message>
        <source>Notes that you find again</source>
        <translation>Des notes que l’on retrouve</translation>
    </message>
    <message>
        <source>Frames and resizes pictures in one go</source>
        <translation>Encadre et redimensionne vos images d’un coup</translation>
    </message>
    <message>
        <source>Sends large files without the fuss</source>
        <translation>Envoie de gros fichiers sans tracas</translation>
    </message>
    <message>
        <source>A calm timer for busy days</source>
        <translation>Un minuteur serein pour les journées chargées</translation>
    </message>
    <message>
        <source>Weaves your pages into one document</source>
        <translation>Réunit vos pages en un seul document</translation>
    </message>
    <message>
        <source>Draws charts from plain tables</source>
        <translation>Trace des graphiques à partir de simples tableaux</translation>
    </message>
    <message>
        <source>Free and easy zip utility</source>
        <translation>Utilitaire zip simple et gratuit</translation>
    </message>
    <message>
        <source>Ready for Ridgeline: everything at half price</source>
        <translation>Prêt pour Ridgeline : tout à moitié prix</translation>
    </message>
</context>
<context>
    <name>AlertPanel</name>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>Impossible d’écrire « %1 »</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>Impossible de remplacer le fichier existant « %1 »</translation>
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
        <translation>Même dossier que la source</translation>
    </message>
    <message>
        <source>Email</source>
        <translation>E-mail</translation>
    </message>
    <message>
        <source>Remove Selected Entry</source>
        <translation>Supprimer l’entrée sélectionnée</translation>
    </message>
    <message>
        <source>Choose a Folder ...</source>
        <translation>Choisir un dossier…</translation>
    </message>
    <message>
        <source>If you enjoy the way Parcelo makes it easy to zip and email files in one step, you will love Sendora.

Sendora combines the drag-and-drop simplicity of Parcelo with the ability to send large files.</source>
        <translation>Si vous appréciez la simplicité avec laquelle Parcelo compresse et envoie des fichiers en une seule étape, vous allez adorer Sendora.

Sendora associe la simplicité du glisser-déposer de Parcelo à l’envoi de gros fichiers.</translation>
    </message>
    <message>
        <source>

For a limited time, apply coupon code &apos;KVW5&apos; (write this down!) during checkout to receive a 30%% discount on Sendora.

Hurry! Offer expires Oct 31, 2010.</source>
        <translation>

Pour une durée limitée, saisissez le code « KVW5 » (notez-le !) lors de la commande pour bénéficier de 30%% de remise sur Sendora.

Dépêchez-vous ! L’offre expire le 31 octobre 2010.</translation>
    </message>
    <message>
        <source>Sendora Special Offer</source>
        <translation>Offre spéciale Sendora</translation>
    </message>
    <message>
        <source>Sendora</source>
        <translation>Sendora</translation>
    </message>
    <message>
        <source>Learn More</source>
        <translation>En savoir plus</translation>
    </message>
    <message>
        <source>Maybe Next Time</source>
        <translation>Une prochaine fois</translation>
    </message>
    <message>
        <source>Don&apos;t Ask Again</source>
        <translation>Ne plus demander</translation>
    </message>
    <message>
        <source>Share on Facebook</source>
        <translation>Partager sur Facebook</translation>
    </message>
    <message>
        <source>As an independent developer, our single greatest challenge is getting the word out.  Please consider taking a minute to share %1 on your Facebook and help spread the word.

Thank you!</source>
        <translation>En tant que développeurs indépendants, notre plus grand défi est de nous faire connaître.  Prenez une minute pour partager %1 sur Facebook et faire passer le mot.

Merci !</translation>
    </message>
    <message>
        <source>Maybe next time</source>
        <translation>Une prochaine fois</translation>
    </message>
    <message>
        <source>Don&apos;t ask again</source>
        <translation>Ne plus demander</translation>
    </message>
    <message>
        <source>We Need Your Help!</source>
        <translation>Nous avons besoin de votre aide !</translation>
    </message>
    <message>
        <source>As an indie developer, our biggest challenge is getting the word out.  Please take a minute to rate %1 on the App Store and help spread the word.

Thank you!</source>
        <translation>En tant que développeurs indépendants, notre plus grand défi est de nous faire connaître.  Prenez une minute pour noter %1 sur l’App Store et faire passer le mot.

Merci !</translation>
    </message>
    <message>
        <source>Rate %1</source>
        <translation>Noter %1</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>The message could not be made</source>
        <translation>Le message n’a pas pu être créé</translation>
    </message>
    <message>
        <source>No mail program took the archive. You can attach it yourself; it stays until you quit:
%1</source>
        <translation>Aucun logiciel de messagerie n’a accepté l’archive. Vous pouvez la joindre vous-même ; elle reste disponible jusqu’à la fermeture du programme :
%1</translation>
    </message>
    <message>
        <source>Please check the attachment</source>
        <translation>Veuillez vérifier la pièce jointe</translation>
    </message>
    <message>
        <source>Your mail program was asked to attach the archive, but does not tell whether it did. If it is missing, you find it here until you quit:
%1</source>
        <translation>Votre logiciel de messagerie a été prié de joindre l’archive, mais n’indique pas s’il l’a fait. Si elle manque, vous la trouverez ici jusqu’à la fermeture du programme :
%1</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>L’archive est prête</translation>
    </message>
    <message>
        <source>No file manager could be asked to show it:
%1</source>
        <translation>Aucun gestionnaire de fichiers n’a pu la montrer :
%1</translation>
    </message>
    <message>
        <source>There are no such files</source>
        <translation>Fichiers introuvables</translation>
    </message>
    <message>
        <source>These cannot be archived:
%1</source>
        <translation>Impossible d’archiver :
%1</translation>
    </message>
    <message>
        <source>Not everything can be archived</source>
        <translation>Tout ne peut pas être archivé</translation>
    </message>
    <message>
        <source>The message may not have been sent yet</source>
        <translation>Le message n’est peut-être pas encore envoyé</translation>
    </message>
    <message>
        <source>Its archive is deleted when you quit. To keep it, have it moved to this folder, from which you can attach it again:
%1</source>
        <translation>Son archive disparaît quand vous quittez. Pour la garder, faites-la déplacer dans ce dossier, d’où vous pourrez la joindre de nouveau :
%1</translation>
    </message>
    <message>
        <source>&amp;Keep and Quit</source>
        <translation>&amp;Garder et quitter</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>&amp;Quit Anyway</source>
        <translation>&amp;Quitter quand même</translation>
    </message>
    <message>
        <source>%1. %2.</source>
        <translation>%1. %2.</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1 : %2</translation>
    </message>
    <message>
        <source>… and %1 more</source>
        <translation>… et %1 autres</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>Tout n’est pas dans l’archive</translation>
    </message>
    <message>
        <source>It is made, but these items are missing or not as they were:
%1</source>
        <translation>Elle est créée, mais ces éléments y manquent ou n’y sont pas tels quels :
%1</translation>
    </message>
    <message>
        <source>&amp;Copy List</source>
        <translation>&amp;Copier la liste</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>L’archive n’a pas pu être créée</translation>
    </message>
    <message>
        <source>An archive is being made</source>
        <translation>Une archive est en cours de création</translation>
    </message>
    <message>
        <source>If you quit now, it will not be made. Your files stay as they are.</source>
        <translation>Si vous quittez maintenant, elle ne sera pas créée. Vos fichiers restent tels quels.</translation>
    </message>
    <message>
        <source>&amp;Keep Going</source>
        <translation>&amp;Continuer</translation>
    </message>
    <message>
        <source>&amp;Stop and Quit</source>
        <translation>&amp;Arrêter et quitter</translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation>Ensuite : %1</translation>
    </message>
    <message>
        <source>or press Space to choose, Ctrl+V to paste</source>
        <translation>ou Espace pour choisir, Ctrl+V pour coller</translation>
    </message>
    <message>
        <source>These are not files on this computer and will be left out:
%1</source>
        <translation>Ces éléments ne sont pas des fichiers de cet ordinateur et seront laissés de côté :
%1</translation>
    </message>
    <message>
        <source>Same as source: %1</source>
        <translation>Comme la source : %1</translation>
    </message>
    <message>
        <source>Files still waiting: %1</source>
        <translation>Fichiers encore en attente : %1</translation>
    </message>
    <message>
        <source>They came while another archive was being made, and will not be archived if you quit:
%1</source>
        <translation>Ils sont arrivés pendant la création d’une autre archive. Si vous quittez, ils ne seront pas archivés :
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
        <translation>ce type d’archive n’existe pas</translation>
    </message>
    <message>
        <source>this system has no tool for that type (%1)</source>
        <translation>ce système n’a pas d’outil pour ce type (%1)</translation>
    </message>
    <message>
        <source>a tool could not be started (%2)</source>
        <translation>un outil n’a pas pu être lancé (%2)</translation>
    </message>
    <message>
        <source>there is nothing to archive</source>
        <translation>il n’y a rien à archiver</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no name to be archived under</source>
        <translation>« %1 » n’a pas de nom sous lequel l’archiver</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read (%2)</source>
        <translation>« %1 » ne peut pas être lu (%2)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; leads to no file or folder</source>
        <translation>« %1 » ne mène à aucun fichier ni dossier</translation>
    </message>
    <message>
        <source>a folder has that name</source>
        <translation>un dossier porte ce nom</translation>
    </message>
    <message>
        <source>the disk of that folder is read-only</source>
        <translation>le disque de ce dossier est en lecture seule</translation>
    </message>
    <message>
        <source>you may not write in that folder</source>
        <translation>vous n’avez pas le droit d’écrire dans ce dossier</translation>
    </message>
    <message>
        <source>that folder cannot be used (%2)</source>
        <translation>ce dossier est inutilisable (%2)</translation>
    </message>
    <message>
        <source>the disk of that folder is full</source>
        <translation>le disque de ce dossier est plein</translation>
    </message>
    <message>
        <source>the system says: %2</source>
        <translation>le système dit : %2</translation>
    </message>
    <message>
        <source>the disk for temporary files is full (%1)</source>
        <translation>le disque des fichiers temporaires est plein (%1)</translation>
    </message>
    <message>
        <source>there is no working folder at %1</source>
        <translation>il n’y a pas de dossier de travail à l’emplacement %1</translation>
    </message>
    <message>
        <source>a tool failed (%2)</source>
        <translation>un outil a échoué (%2)</translation>
    </message>
    <message>
        <source>the tool has made nothing</source>
        <translation>l’outil n’a rien créé</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Permission refusée</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Fichier ou dossier introuvable</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Opération non permise</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>Opération non prise en charge</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Erreur d’entrée/sortie</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>Plus de place sur le disque</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Quota de disque dépassé</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Système de fichiers en lecture seule</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Fichier trop grand</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Nom de fichier trop long</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Ce n’est pas un dossier</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>C’est un dossier</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>Le fichier existe déjà</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Trop de liens symboliques</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Trop de fichiers ouverts</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>Fichier disparu du serveur</translation>
    </message>
    <message>
        <source>is a FIFO</source>
        <translation>est un tube</translation>
    </message>
    <message>
        <source>is a socket</source>
        <translation>est un socket</translation>
    </message>
    <message>
        <source>is a device</source>
        <translation>est un périphérique</translation>
    </message>
    <message>
        <source>changed while it was read</source>
        <translation>a changé pendant la lecture</translation>
    </message>
    <message>
        <source>is stored without some of its attributes</source>
        <translation>est enregistré sans certains de ses attributs</translation>
    </message>
    <message>
        <source>shrank while it was read</source>
        <translation>a raccourci pendant la lecture</translation>
    </message>
    <message>
        <source>grew while it was read; stored up to its earlier size</source>
        <translation>a grandi pendant la lecture ; archivé jusqu’à sa taille d’avant</translation>
    </message>
    <message>
        <source>was moved while it was read</source>
        <translation>a été déplacé pendant la lecture</translation>
    </message>
    <message>
        <source>was replaced while its folder was read</source>
        <translation>a été remplacé pendant la lecture de son dossier</translation>
    </message>
    <message>
        <source>was replaced by a link while its folder was read</source>
        <translation>a été remplacé par un lien pendant la lecture de son dossier</translation>
    </message>
    <message>
        <source>is a folder it lies in</source>
        <translation>est un dossier qui le contient</translation>
    </message>
    <message>
        <source>links to nothing; stored as a link</source>
        <translation>lien vers rien ; archivé comme lien</translation>
    </message>
    <message>
        <source>links in a circle; stored as a link</source>
        <translation>lien en boucle ; archivé comme lien</translation>
    </message>
    <message>
        <source>links to a folder it lies in; stored as a link</source>
        <translation>lien vers un dossier qui le contient ; archivé comme lien</translation>
    </message>
    <message>
        <source>does not tell its size; stored empty</source>
        <translation>n’indique pas sa taille ; archivé vide</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>Impossible de remplacer le fichier existant « %1 »</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>Impossible d’écrire « %1 »</translation>
    </message>
    <message>
        <source>the archive would replace &apos;%1&apos;, which is to be in it</source>
        <translation>l’archive remplacerait « %1 », qui doit en faire partie</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be the name of an archive</source>
        <translation>« %1 » ne peut pas être le nom d’une archive</translation>
    </message>
    <message>
        <source>not a file on this computer</source>
        <translation>n’est pas un fichier de cet ordinateur</translation>
    </message>
</context>
<context>
    <name>DropView</name>
    <message>
        <source>Drop Files Here</source>
        <translation>Déposez les fichiers ici</translation>
    </message>
    <message>
        <source>Drop files and folders here, or press to choose files</source>
        <translation>Déposez ici des fichiers et des dossiers, ou appuyez pour choisir des fichiers</translation>
    </message>
</context>
<context>
    <name>EmailWindow</name>
    <message>
        <source>Email Archive</source>
        <translation>Envoyer l’archive par e-mail</translation>
    </message>
    <message>
        <source>The archive will be attached to a new message.</source>
        <translation>L’archive sera jointe à un nouveau message.</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Nom :</translation>
    </message>
    <message>
        <source>Archive name</source>
        <translation>Nom de l’archive</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
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
        <translation>Ce que le serveur envoie est trop volumineux pour une liste de versions.</translation>
    </message>
    <message>
        <source>The server does not answer in time.</source>
        <translation>Le serveur ne répond pas à temps.</translation>
    </message>
    <message>
        <source>The server answers with error %1.</source>
        <translation>Le serveur répond par l’erreur %1.</translation>
    </message>
</context>
<context>
    <name>FileChooser</name>
    <message>
        <source>Show &amp;hidden files</source>
        <translation>Afficher les fichiers &amp;masqués</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>Ch&amp;oose</source>
        <translation>C&amp;hoisir</translation>
    </message>
    <message>
        <source>Choose Files and Folders</source>
        <translation>Choisir des fichiers et des dossiers</translation>
    </message>
    <message>
        <source>Files and folders</source>
        <translation>Fichiers et dossiers</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Dossier :</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>&amp;Chemin :</translation>
    </message>
    <message>
        <source>There is nothing at this path.</source>
        <translation>Il n’y a rien à ce chemin.</translation>
    </message>
    <message>
        <source>%1 items selected</source>
        <translation>%1 éléments sélectionnés</translation>
    </message>
    <message>
        <source>This folder cannot be read.</source>
        <translation>Ce dossier ne peut pas être lu.</translation>
    </message>
</context>
<context>
    <name>FileListView</name>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Modifié</translation>
    </message>
</context>
<context>
    <name>FolderMenu</name>
    <message>
        <source>Home</source>
        <translation>Dossier personnel</translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Bureau</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Autre…</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Dossiers</translation>
    </message>
</context>
<context>
    <name>JobNotice</name>
    <message>
        <source>An archive is being made</source>
        <translation>Création d’une archive en cours</translation>
    </message>
    <message>
        <source>Making an archive</source>
        <translation>Création d’une archive</translation>
    </message>
    <message>
        <source>%1: %2%</source>
        <translation>%1 : %2 %</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>L’archive n’a pas pu être créée</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>L’archive est prête</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>Tout n’est pas dans l’archive</translation>
    </message>
    <message>
        <source>Open Parcelo</source>
        <translation>Ouvrir Parcelo</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Afficher</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>Completed</source>
        <translation>Terminé</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Annulé</translation>
    </message>
    <message>
        <source>TYPE_MAC</source>
        <translation>Conserve aussi les ressources et les attributs étendus, dans un dossier à part.</translation>
    </message>
    <message>
        <source>TYPE_PC</source>
        <translation>S’ouvre sur tous les ordinateurs. Droits, dates et liens sont conservés.</translation>
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
        <translation>&amp;Destination :</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Destination</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Édition</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>Fe&amp;nêtre</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Paste Files</source>
        <translation>&amp;Coller les fichiers</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>&amp;Préférences…</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>&amp;Réduire</translation>
    </message>
    <message>
        <source>Parcelo &amp;Help</source>
        <translation>&amp;Aide de Parcelo</translation>
    </message>
    <message>
        <source>O&amp;nline Help</source>
        <translation>Aide en lig&amp;ne</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>Visiter le site &amp;web</translation>
    </message>
    <message>
        <source>Visit F&amp;orum</source>
        <translation>Visiter le &amp;forum</translation>
    </message>
    <message>
        <source>&amp;Share on Facebook</source>
        <translation>Pa&amp;rtager sur Facebook</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>Écrire un &amp;commentaire</translation>
    </message>
    <message>
        <source>Visit Sho&amp;p</source>
        <translation>Visiter la &amp;boutique</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>Rechercher des &amp;mises à jour…</translation>
    </message>
    <message>
        <source>&amp;About Parcelo</source>
        <translation>À &amp;propos de Parcelo</translation>
    </message>
    <message>
        <source>Ma&amp;ximize</source>
        <translation>&amp;Agrandir</translation>
    </message>
    <message>
        <source>&amp;Choose Files and Folders…</source>
        <translation>&amp;Choisir des fichiers et des dossiers…</translation>
    </message>
</context>
<context>
    <name>OpenPanel</name>
    <message>
        <source>Choose a Folder</source>
        <translation>Choisir un dossier</translation>
    </message>
</context>
<context>
    <name>Preference</name>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archives</translation>
    </message>
    <message>
        <source>Com&amp;pression:</source>
        <translation>Com&amp;pression :</translation>
    </message>
    <message>
        <source>faster</source>
        <translation>plus rapide</translation>
    </message>
    <message>
        <source>Compression level</source>
        <translation>Niveau de compression</translation>
    </message>
    <message>
        <source>smaller</source>
        <translation>plus petit</translation>
    </message>
    <message>
        <source>&amp;Keep the extension in the proposed name</source>
        <translation>&amp;Garder l’extension dans le nom proposé</translation>
    </message>
    <message>
        <source>&amp;Show the finished archive in the file manager</source>
        <translation>&amp;Montrer l’archive terminée dans le gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programme</translation>
    </message>
    <message>
        <source>&amp;Quit after archiving files opened with the icon</source>
        <translation>&amp;Quitter après avoir archivé des fichiers ouverts avec l’icône</translation>
    </message>
    <message>
        <source>Keep &amp;running when the window is closed</source>
        <translation>&amp;Rester actif quand la fenêtre est fermée</translation>
    </message>
    <message>
        <source>Check for &amp;updates at start</source>
        <translation>&amp;Vérifier les mises à jour au démarrage</translation>
    </message>
    <message>
        <source>&amp;Hide the line about our other products</source>
        <translation>Masquer la &amp;ligne sur nos autres produits</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
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
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>%1 of %2 (%3/s)</source>
        <translation>%1 sur %2 (%3/s)</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>Quelques secondes restantes</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>Environ %1 secondes restantes</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Environ une minute restante</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>Environ %1 minutes restantes</translation>
    </message>
    <message>
        <source>About %1 hours left</source>
        <translation>Environ %1 heures restantes</translation>
    </message>
</context>
<context>
    <name>ProgressWindow</name>
    <message>
        <source>Making Archive</source>
        <translation>Création de l’archive</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
</context>
<context>
    <name>QKWindow</name>
    <message>
        <source>Hide Toolbar</source>
        <translation>Masquer la barre d’outils</translation>
    </message>
    <message>
        <source>Show Toolbar</source>
        <translation>Afficher la barre d’outils</translation>
    </message>
</context>
<context>
    <name>SUUpdater</name>
    <message>
        <source>Updates come with your system&apos;s software.</source>
        <translation>Les mises à jour arrivent avec les logiciels de votre système.</translation>
    </message>
    <message>
        <source>You have version %1.</source>
        <translation>Vous avez la version %1.</translation>
    </message>
    <message>
        <source>No address is set at which to look for new versions.</source>
        <translation>Aucune adresse n’est définie pour rechercher de nouvelles versions.</translation>
    </message>
    <message>
        <source>The list of versions cannot be read.</source>
        <translation>La liste des versions est illisible.</translation>
    </message>
    <message>
        <source>%1 is up to date.</source>
        <translation>%1 est à jour.</translation>
    </message>
    <message>
        <source>You have version %1, and there is none that is newer.</source>
        <translation>Vous avez la version %1, et il n’y en a pas de plus récente.</translation>
    </message>
    <message>
        <source>It was not possible to look for new versions.</source>
        <translation>La recherche de nouvelles versions n’a pas abouti.</translation>
    </message>
</context>
<context>
    <name>SavePanel</name>
    <message>
        <source>Save Archive</source>
        <translation>Enregistrer l’archive</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Nom :</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Dossier :</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>&amp;Use “%1”</source>
        <translation>&amp;Utiliser « %1 »</translation>
    </message>
    <message>
        <source>This folder cannot be found. Choose another one.</source>
        <translation>Ce dossier est introuvable. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>You cannot save in this folder. Choose another one.</source>
        <translation>Vous ne pouvez pas enregistrer dans ce dossier. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>A name cannot contain a slash.</source>
        <translation>Un nom ne peut pas contenir de barre oblique.</translation>
    </message>
    <message>
        <source>This cannot be a name.</source>
        <translation>Ceci ne peut pas être un nom.</translation>
    </message>
    <message>
        <source>This name is too long.</source>
        <translation>Ce nom est trop long.</translation>
    </message>
    <message>
        <source>There is a folder named “%1”.</source>
        <translation>Il existe un dossier nommé « %1 ».</translation>
    </message>
    <message>
        <source>“%1” exists and will be replaced (%2, %3).</source>
        <translation>« %1 » existe et sera remplacé (%2, %3).</translation>
    </message>
    <message>
        <source>Names that begin with a dot are hidden.</source>
        <translation>Les noms commençant par un point sont masqués.</translation>
    </message>
    <message>
        <source>Some systems refuse names with “%1”.</source>
        <translation>Certains systèmes refusent les noms contenant « %1 ».</translation>
    </message>
    <message>
        <source>Windows refuses this name.</source>
        <translation>Windows refuse ce nom.</translation>
    </message>
    <message>
        <source>This name begins or ends with a space.</source>
        <translation>Ce nom commence ou se termine par une espace.</translation>
    </message>
</context>
<context>
    <name>UpdateSheet</name>
    <message>
        <source>Software Update</source>
        <translation>Mise à jour logicielle</translation>
    </message>
    <message>
        <source>An important update of %1 is available.</source>
        <translation>Une mise à jour importante de %1 est disponible.</translation>
    </message>
    <message>
        <source>A new version of %1 is available.</source>
        <translation>Une nouvelle version de %1 est disponible.</translation>
    </message>
    <message>
        <source>%1 %2 can be downloaded; you have %3.</source>
        <translation>%1 %2 peut être téléchargé ; vous avez la version %3.</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Nouveautés</translation>
    </message>
    <message>
        <source>&amp;Not Now</source>
        <translation>&amp;Pas maintenant</translation>
    </message>
    <message>
        <source>&amp;Open Download Page</source>
        <translation>&amp;Ouvrir la page de téléchargement</translation>
    </message>
    <message>
        <source>&amp;What Is New</source>
        <translation>&amp;Nouveautés</translation>
    </message>
</context>
</TS>
