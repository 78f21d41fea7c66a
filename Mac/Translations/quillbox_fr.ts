<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>AsyncSocket</name>
    <message>
        <source>General CFSocket error</source>
        <comment>AsyncSocketCFSocketError</comment>
        <translation>Erreur générale de CFSocket</translation>
    </message>
    <message>
        <source>Connection canceled</source>
        <comment>AsyncSocketCanceledError</comment>
        <translation>Connexion annulée</translation>
    </message>
    <message>
        <source>Attempt to connect to host timed out</source>
        <comment>AsyncSocketConnectTimeoutError</comment>
        <translation>Délai de connexion dépassé</translation>
    </message>
    <message>
        <source>Read operation reached set maximum length</source>
        <comment>AsyncSocketReadMaxedOutError</comment>
        <translation>La lecture a atteint la longueur maximale fixée</translation>
    </message>
    <message>
        <source>Read operation timed out</source>
        <comment>AsyncSocketReadTimeoutError</comment>
        <translation>Délai de lecture dépassé</translation>
    </message>
    <message>
        <source>Write operation timed out</source>
        <comment>AsyncSocketWriteTimeoutError</comment>
        <translation>Délai d’écriture dépassé</translation>
    </message>
    <message>
        <source>nothing answers at this address and port</source>
        <translation>rien ne répond à cette adresse et à ce port</translation>
    </message>
    <message>
        <source>there is no way to this address</source>
        <translation>aucun chemin ne mène à cette adresse</translation>
    </message>
    <message>
        <source>this computer is not on that network</source>
        <translation>cet ordinateur n’est pas sur ce réseau</translation>
    </message>
    <message>
        <source>the network connection is down</source>
        <translation>la connexion réseau est interrompue</translation>
    </message>
    <message>
        <source>the device is switched off</source>
        <translation>l’appareil est éteint</translation>
    </message>
    <message>
        <source>the device does not answer</source>
        <translation>l’appareil ne répond pas</translation>
    </message>
    <message>
        <source>the device broke the connection off</source>
        <translation>l’appareil a rompu la connexion</translation>
    </message>
    <message>
        <source>the connection was broken off</source>
        <translation>la connexion a été rompue</translation>
    </message>
    <message>
        <source>the device has closed the connection</source>
        <translation>l’appareil a fermé la connexion</translation>
    </message>
    <message>
        <source>this connection is not allowed</source>
        <translation>cette connexion n’est pas autorisée</translation>
    </message>
    <message>
        <source>this address cannot be used</source>
        <translation>cette adresse ne peut pas être utilisée</translation>
    </message>
    <message>
        <source>too many files are open</source>
        <translation>trop de fichiers sont ouverts</translation>
    </message>
    <message>
        <source>there is no device of this name or address</source>
        <translation>il n’y a pas d’appareil de ce nom ou à cette adresse</translation>
    </message>
    <message>
        <source>this name has no address</source>
        <translation>ce nom n’a pas d’adresse</translation>
    </message>
    <message>
        <source>names cannot be looked up at the moment</source>
        <translation>les noms ne peuvent pas être résolus pour le moment</translation>
    </message>
    <message>
        <source>the name could not be looked up</source>
        <translation>le nom n’a pas pu être résolu</translation>
    </message>
    <message>
        <source>the attempt was called off</source>
        <translation>la tentative a été abandonnée</translation>
    </message>
    <message>
        <source>the device did not answer in time</source>
        <translation>l’appareil n’a pas répondu à temps</translation>
    </message>
    <message>
        <source>the device sent more than expected</source>
        <translation>l’appareil a envoyé plus que prévu</translation>
    </message>
    <message>
        <source>the device did not send in time</source>
        <translation>l’appareil n’a rien envoyé à temps</translation>
    </message>
    <message>
        <source>the device did not take the data in time</source>
        <translation>l’appareil n’a pas accepté les données à temps</translation>
    </message>
</context>
<context>
    <name>AsyncUdpSocket</name>
    <message>
        <source>General CFSocket error</source>
        <translation>Erreur générale de CFSocket</translation>
    </message>
    <message>
        <source>Invalid group and/or address, not matching existing socket(s)</source>
        <translation>Groupe ou adresse non valide, ne correspondant à aucun socket existant</translation>
    </message>
    <message>
        <source>IPv4 is unavailable due to binding/connecting using IPv6 only</source>
        <translation>IPv4 n’est pas disponible, car seul IPv6 est utilisé</translation>
    </message>
    <message>
        <source>IPv6 is unavailable due to binding/connecting using IPv4 only or is not supported on this platform</source>
        <translation>IPv6 n’est pas disponible, car seul IPv4 est utilisé ou ce système ne le prend pas en charge</translation>
    </message>
    <message>
        <source>Send operation timed out</source>
        <translation>Délai d’envoi dépassé</translation>
    </message>
    <message>
        <source>Receive operation timed out</source>
        <translation>Délai de réception dépassé</translation>
    </message>
</context>
<context>
    <name>CopyFolder</name>
    <message>
        <source>What exists</source>
        <translation>Ce qui existe</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Non</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Non</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Oui</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Oui</translation>
    </message>
    <message>
        <source>Yes to &amp;all</source>
        <translation>Oui pour &amp;tout</translation>
    </message>
    <message>
        <source>Yes to all</source>
        <translation>Oui pour tout</translation>
    </message>
    <message>
        <source>Ends the operation</source>
        <translation>Met fin à l’opération</translation>
    </message>
    <message>
        <source>Keeps what exists and goes on with the next</source>
        <translation>Garde ce qui existe et passe au suivant</translation>
    </message>
    <message>
        <source>Replaces what exists</source>
        <translation>Remplace ce qui existe</translation>
    </message>
    <message>
        <source>Replaces what exists and asks no more</source>
        <translation>Remplace ce qui existe sans plus rien demander</translation>
    </message>
</context>
<context>
    <name>CreateFolder</name>
    <message>
        <source>Create Folder</source>
        <translation>Créer un dossier</translation>
    </message>
    <message>
        <source>&amp;Name of the new folder:</source>
        <translation>&amp;Nom du nouveau dossier&#xa0;:</translation>
    </message>
    <message>
        <source>Folder name</source>
        <translation>Nom du dossier</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>What the new folder is to be called</source>
        <translation>Le nom que portera le nouveau dossier</translation>
    </message>
    <message>
        <source>Makes the folder</source>
        <translation>Crée le dossier</translation>
    </message>
    <message>
        <source>Closes this window and changes nothing</source>
        <translation>Ferme cette fenêtre sans rien changer</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Connecter</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Retour</translation>
    </message>
    <message>
        <source>Create Fo&amp;lder</source>
        <translation>Créer &amp;un dossier</translation>
    </message>
    <message>
        <source>D&amp;elete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>&amp;Upload</source>
        <translation>&amp;Envoyer</translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation>&amp;Télécharger</translation>
    </message>
    <message>
        <source>Directory</source>
        <translation>Répertoire</translation>
    </message>
    <message>
        <source>Device folder</source>
        <translation>Dossier de l’appareil</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>État</translation>
    </message>
    <message>
        <source>&amp;Transparency</source>
        <translation>Trans&amp;parence</translation>
    </message>
    <message>
        <source>Transparency</source>
        <translation>Transparence</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Ai&amp;de</translation>
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
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Actualiser</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>&amp;User Guide</source>
        <translation>&amp;Guide de l’utilisateur</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>&amp;About Quillbox</source>
        <translation>À &amp;propos de Quillbox</translation>
    </message>
    <message>
        <source>Finds devices and connects to one</source>
        <translation>Cherche des appareils et se connecte à l’un d’eux</translation>
    </message>
    <message>
        <source>Goes to the folder above</source>
        <translation>Remonte au dossier parent</translation>
    </message>
    <message>
        <source>Makes a new folder in the folder shown</source>
        <translation>Crée un nouveau dossier dans le dossier affiché</translation>
    </message>
    <message>
        <source>Deletes what is selected from the device</source>
        <translation>Supprime la sélection de l’appareil</translation>
    </message>
    <message>
        <source>Sends files of this computer to the folder shown</source>
        <translation>Envoie des fichiers de cet ordinateur dans le dossier affiché</translation>
    </message>
    <message>
        <source>Copies what is selected to this computer</source>
        <translation>Copie la sélection sur cet ordinateur</translation>
    </message>
    <message>
        <source>Lets what is behind this window show through: the further left, the more</source>
        <translation>Laisse transparaître ce qui est derrière cette fenêtre&#xa0;: plus le curseur est à gauche, plus elle est transparente</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>&amp;Ouvrir</translation>
    </message>
    <message>
        <source>Copy &amp;Diagnostics</source>
        <translation>Copier les informations de &amp;diagnostic</translation>
    </message>
    <message>
        <source>Upload &amp;Folder</source>
        <translation>Envoyer un &amp;dossier</translation>
    </message>
    <message>
        <source>Ctrl+Shift+U</source>
        <translation>Ctrl+Shift+U</translation>
    </message>
    <message>
        <source>Sort by &amp;Name</source>
        <translation>Trier par &amp;nom</translation>
    </message>
    <message>
        <source>Sort by &amp;Type</source>
        <translation>Trier par &amp;type</translation>
    </message>
    <message>
        <source>Sort by &amp;Date Modified</source>
        <translation>Trier par &amp;date de modification</translation>
    </message>
</context>
<context>
    <name>ProgressView</name>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>Current item</source>
        <translation>Élément actuel</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Détails</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>How much of it is done</source>
        <translation>La part déjà effectuée</translation>
    </message>
    <message>
        <source>Ends the operation</source>
        <translation>Met fin à l’opération</translation>
    </message>
</context>
<context>
    <name>QAbstractFileIconProvider</name>
    <message>
        <source>Drive</source>
        <translation>Disque</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Shortcut</source>
        <translation>Raccourci</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Inconnu</translation>
    </message>
</context>
<context>
    <name>Quillbox</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Connecter</translation>
    </message>
    <message>
        <source>Dis&amp;connect</source>
        <translation>Dé&amp;connecter</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Date Modified</source>
        <translation>Date de modification</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forme d’onde</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>%s file</source>
        <extracomment>The type of a file; its extension stands for %s.</extracomment>
        <translation>Fichier %s</translation>
    </message>
    <message>
        <source>This folder is empty</source>
        <translation>Ce dossier est vide</translation>
    </message>
    <message>
        <source>The folder could not be listed. Press F5 to try again.</source>
        <translation>Le contenu du dossier n’a pas pu être lu. Appuyez sur F5 pour le relire.</translation>
    </message>
    <message>
        <source>Press Connect, then choose your device or type its address.
The device and this computer must be on the same network.</source>
        <translation>Appuyez sur «&#x202f;Connecter&#x202f;», puis choisissez votre appareil ou saisissez son adresse.
L’appareil et cet ordinateur doivent être sur le même réseau.</translation>
    </message>
    <message>
        <source>Press the &apos;Connect&apos; button to begin</source>
        <translation>Appuyez sur «&#x202f;Connecter&#x202f;» pour commencer</translation>
    </message>
    <message>
        <source>Searching for &apos;%s&apos;</source>
        <translation>Recherche de «&#x202f;%s&#x202f;»</translation>
    </message>
    <message>
        <source>Connected to &apos;%s&apos;</source>
        <translation>Connecté à «&#x202f;%s&#x202f;»</translation>
    </message>
    <message>
        <source>Connection has been closed</source>
        <translation>La connexion a été fermée</translation>
    </message>
    <message>
        <source>Waiting for operation to finish</source>
        <translation>L’opération en cours n’est pas encore terminée</translation>
    </message>
    <message>
        <source>Reading Folder Contents</source>
        <translation>Lecture du contenu du dossier</translation>
    </message>
    <message>
        <source>Browses your device on the network and copies files both ways.</source>
        <translation>Parcourt un appareil sur le réseau et copie des fichiers dans les deux sens.</translation>
    </message>
    <message>
        <source>Looking for devices. If yours does not appear, check that it is on the same network, that its file server is on, and that this computer&apos;s firewall lets UDP port 10245 in.</source>
        <translation>Recherche d’appareils. Si le vôtre n’apparaît pas, vérifiez qu’il est sur le même réseau, que son serveur de fichiers est activé et que le pare-feu de cet ordinateur laisse passer le port UDP 10245.</translation>
    </message>
    <message>
        <source>Devices cannot be looked for at the moment. Check the network connection and press Refresh.</source>
        <translation>La recherche d’appareils est impossible pour le moment. Vérifiez la connexion réseau et appuyez sur «&#x202f;Actualiser&#x202f;».</translation>
    </message>
    <message>
        <source>Devices cannot be looked for at the moment. Check the network connection, choose &quot;Use found device&quot; and press Refresh.</source>
        <translation>La recherche d’appareils est impossible pour le moment. Vérifiez la connexion réseau, choisissez «&#x202f;Utiliser un appareil trouvé&#x202f;» et appuyez sur «&#x202f;Actualiser&#x202f;».</translation>
    </message>
    <message>
        <source>New devices were found. Press Refresh to see them.</source>
        <translation>De nouveaux appareils ont été trouvés. Appuyez sur «&#x202f;Actualiser&#x202f;» pour les voir.</translation>
    </message>
    <message>
        <source>New devices were found. To see them, choose &quot;Use found device&quot; and press Refresh.</source>
        <translation>De nouveaux appareils ont été trouvés. Pour les voir, choisissez «&#x202f;Utiliser un appareil trouvé&#x202f;» et appuyez sur «&#x202f;Actualiser&#x202f;».</translation>
    </message>
    <message>
        <source>New devices were found</source>
        <translation>De nouveaux appareils ont été trouvés</translation>
    </message>
    <message>
        <source>No devices were found</source>
        <translation>Aucun appareil n’a été trouvé</translation>
    </message>
    <message>
        <source>Do you wish to try manually entering an IP address?</source>
        <translation>Voulez-vous saisir une adresse IP à la main&#x202f;?</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Oui</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Non</translation>
    </message>
    <message>
        <source>Files</source>
        <extracomment>The kind of files to choose among; their extensions follow in parentheses.</extracomment>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Copy Folder</source>
        <translation>Copier le dossier</translation>
    </message>
    <message>
        <source>Copy File</source>
        <translation>Copier le fichier</translation>
    </message>
    <message>
        <source>A folder with the name &apos;%s&apos; already exists.</source>
        <translation>Un dossier nommé «&#x202f;%s&#x202f;» existe déjà.</translation>
    </message>
    <message>
        <source>A file with the name &apos;%s&apos; already exists.</source>
        <translation>Un fichier nommé «&#x202f;%s&#x202f;» existe déjà.</translation>
    </message>
    <message>
        <source>Any files in the destination folder with the same name as those in the source folder will be replaced.  Do you still want to copy the folder?</source>
        <translation>Les fichiers du dossier de destination qui portent le même nom que ceux du dossier source seront remplacés. Voulez-vous tout de même copier le dossier&#x202f;?</translation>
    </message>
    <message>
        <source>Do you want to replace it?</source>
        <translation>Voulez-vous le remplacer&#x202f;?</translation>
    </message>
    <message>
        <source>No files selected</source>
        <translation>Aucun fichier sélectionné</translation>
    </message>
    <message>
        <source>Please select the files you wish to download</source>
        <translation>Veuillez sélectionner les fichiers à télécharger</translation>
    </message>
    <message>
        <source>Choose file download destination folder</source>
        <translation>Choisir le dossier de destination du téléchargement</translation>
    </message>
    <message>
        <source>Downloading to &apos;%s&apos;</source>
        <translation>Téléchargement vers «&#x202f;%s&#x202f;»</translation>
    </message>
    <message>
        <source>Download failed</source>
        <translation>Échec du téléchargement</translation>
    </message>
    <message>
        <source>Path too long</source>
        <translation>Chemin trop long</translation>
    </message>
    <message>
        <source>Could not open file</source>
        <translation>Impossible d’ouvrir le fichier</translation>
    </message>
    <message>
        <source>Too many files</source>
        <translation>Trop de fichiers</translation>
    </message>
    <message>
        <source>Upload files to &apos;%s:/%s&apos;</source>
        <translation>Envoyer des fichiers vers «&#x202f;%s:/%s&#x202f;»</translation>
    </message>
    <message>
        <source>Upload a folder to &apos;%s:/%s&apos;</source>
        <translation>Envoyer un dossier vers «&#x202f;%s:/%s&#x202f;»</translation>
    </message>
    <message>
        <source>Uploading files</source>
        <translation>Envoi des fichiers</translation>
    </message>
    <message>
        <source>Upload failed</source>
        <translation>Échec de l’envoi</translation>
    </message>
    <message>
        <source>File convert failed</source>
        <translation>Échec de la conversion du fichier</translation>
    </message>
    <message>
        <source>Not a name for a device</source>
        <translation>Nom non valide pour un appareil</translation>
    </message>
    <message>
        <source>File drop failed</source>
        <translation>Échec du dépôt de fichiers</translation>
    </message>
    <message>
        <source>This folder is read only.</source>
        <translation>Ce dossier est en lecture seule.</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Supprimer des fichiers</translation>
    </message>
    <message>
        <source>Please select the files you wish to delete</source>
        <translation>Veuillez sélectionner les fichiers à supprimer</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Voulez-vous vraiment supprimer ce dossier dans «&#x202f;%s:/%s&#x202f;»&#x202f;? Cette opération est irréversible.</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this file from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Voulez-vous vraiment supprimer ce fichier dans «&#x202f;%s:/%s&#x202f;»&#x202f;? Cette opération est irréversible.</translation>
    </message>
    <message>
        <source>Are you sure you want to delete %d files from &apos;%s:/%s&apos;?  This operation cannot be undone.</source>
        <translation>Voulez-vous vraiment supprimer %d fichiers dans «&#x202f;%s:/%s&#x202f;»&#x202f;? Cette opération est irréversible.</translation>
    </message>
    <message>
        <source>Deleting files</source>
        <translation>Suppression des fichiers</translation>
    </message>
    <message>
        <source>File %d of %d</source>
        <translation>Fichier %d sur %d</translation>
    </message>
    <message>
        <source>Delete failed</source>
        <translation>Échec de la suppression</translation>
    </message>
    <message>
        <source>Creating Folder</source>
        <translation>Création du dossier</translation>
    </message>
    <message>
        <source>Create Folder Failed</source>
        <translation>Échec de la création du dossier</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is not a valid folder name.</source>
        <translation>«&#x202f;%s&#x202f;» n’est pas un nom de dossier valide.</translation>
    </message>
    <message>
        <source>File already exists</source>
        <translation>Ce nom est déjà pris</translation>
    </message>
    <message>
        <source>A file or folder called &apos;%s&apos; already exists.  Please try another name.</source>
        <translation>Un fichier ou un dossier nommé «&#x202f;%s&#x202f;» existe déjà. Veuillez choisir un autre nom.</translation>
    </message>
    <message>
        <source>Couldn&apos;t read file</source>
        <translation>Impossible de lire le fichier</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Fichier trop volumineux</translation>
    </message>
    <message>
        <source>Receive buffer overflow</source>
        <translation>La réponse de l’appareil est trop longue</translation>
    </message>
    <message>
        <source>Device sent more data than announced</source>
        <translation>L’appareil a envoyé plus de données qu’annoncé</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Connexion refusée</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>Aucun chemin vers l’appareil</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>Réseau inaccessible</translation>
    </message>
    <message>
        <source>Network is down</source>
        <translation>Réseau indisponible</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>Appareil indisponible</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>Délai de connexion dépassé</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>Connexion réinitialisée par le correspondant</translation>
    </message>
    <message>
        <source>Software caused connection abort</source>
        <translation>Connexion interrompue par le système</translation>
    </message>
    <message>
        <source>Broken pipe</source>
        <translation>Connexion coupée</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Accès refusé</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Opération non permise</translation>
    </message>
    <message>
        <source>Cannot assign requested address</source>
        <translation>Impossible d’attribuer l’adresse demandée</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Argument non valide</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Trop de fichiers ouverts</translation>
    </message>
    <message>
        <source>Too many open files in system</source>
        <translation>Trop de fichiers ouverts dans le système</translation>
    </message>
    <message>
        <source>Name or service not known</source>
        <translation>Nom ou service inconnu</translation>
    </message>
    <message>
        <source>No address associated with hostname</source>
        <translation>Aucune adresse associée à ce nom</translation>
    </message>
    <message>
        <source>Temporary failure in name resolution</source>
        <translation>Échec temporaire de la résolution du nom</translation>
    </message>
    <message>
        <source>Non-recoverable failure in name resolution</source>
        <translation>Échec définitif de la résolution du nom</translation>
    </message>
    <message>
        <source>%s too large to download</source>
        <translation>%s est trop volumineux pour être téléchargé</translation>
    </message>
    <message>
        <source>%s - failed to write file</source>
        <translation>%s – impossible d’écrire le fichier</translation>
    </message>
    <message>
        <source>Couldn&apos;t open file &apos;%s&apos;</source>
        <translation>Impossible d’ouvrir le fichier «&#x202f;%s&#x202f;»</translation>
    </message>
    <message>
        <source>Couldn&apos;t read file &apos;%s&apos;</source>
        <translation>Impossible de lire le fichier «&#x202f;%s&#x202f;»</translation>
    </message>
    <message>
        <source>&apos;%s&apos; is empty</source>
        <translation>«&#x202f;%s&#x202f;» est vide</translation>
    </message>
    <message>
        <source>&apos;%s&apos; - couldn&apos;t open as an audio file.</source>
        <translation>«&#x202f;%s&#x202f;» – impossible de l’ouvrir comme fichier audio.</translation>
    </message>
    <message>
        <source>&apos;%s&apos; - too many channels.</source>
        <translation>«&#x202f;%s&#x202f;» – trop de canaux.</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open file</source>
        <translation>%s – impossible d’ouvrir le fichier</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t read file. Check that it is uncompressed PCM</source>
        <translation>%s – impossible de lire le fichier. Vérifiez qu’il est en PCM non compressé</translation>
    </message>
    <message>
        <source>%s - Only mono and stereo files are supported</source>
        <translation>%s – seuls les fichiers mono et stéréo sont pris en charge</translation>
    </message>
    <message>
        <source>%s - Only sample rates up to 48000 are supported</source>
        <translation>%s – seules les fréquences d’échantillonnage jusqu’à 48000 sont prises en charge</translation>
    </message>
    <message>
        <source>%s - Only 8 or 16 bit samples are supported</source>
        <translation>%s – seuls les échantillons de 8 ou 16 bits sont pris en charge</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open wav file for writing</source>
        <translation>%s – impossible d’ouvrir le fichier WAV en écriture</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t open audio file for output</source>
        <translation>%s – impossible d’ouvrir le fichier audio en écriture</translation>
    </message>
    <message>
        <source>%s - Couldn&apos;t write wav file</source>
        <translation>%s – impossible d’écrire le fichier WAV</translation>
    </message>
    <message>
        <source>%s - %s</source>
        <extracomment>What something is called, and what went wrong with it.</extracomment>
        <translation>%s – %s</translation>
    </message>
    <message>
        <source>File zero size</source>
        <translation>Fichier vide</translation>
    </message>
    <message>
        <source>AsyncSocket couldn&apos;t determine IP version of socket</source>
        <translation>AsyncSocket n’a pas pu déterminer la version IP du socket</translation>
    </message>
    <message>
        <source> file</source>
        <extracomment>The type of a file without an extension; only the English one begins with a blank.</extracomment>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>Finds devices and connects to one</source>
        <translation>Cherche des appareils et se connecte à l’un d’eux</translation>
    </message>
    <message>
        <source>Ends the connection to the device</source>
        <translation>Met fin à la connexion avec l’appareil</translation>
    </message>
    <message>
        <source>What the folder of the device holds</source>
        <translation>Ce que contient le dossier de l’appareil</translation>
    </message>
    <message>
        <source>Diagnostics copied</source>
        <translation>Informations de diagnostic copiées</translation>
    </message>
    <message>
        <source>Paste them where you ask for help. They say which versions and which system you use, and hold the last lines of the log, in which names of devices and files and network addresses may appear.</source>
        <translation>Collez-les là où vous demandez de l’aide. Elles indiquent les versions et le système que vous utilisez, et contiennent les dernières lignes du journal, où peuvent figurer des noms d’appareils et de fichiers ainsi que des adresses réseau.</translation>
    </message>
    <message>
        <source>The user guide cannot be shown</source>
        <translation>Impossible d’afficher le guide de l’utilisateur</translation>
    </message>
    <message>
        <source>It was not found. Installing Quillbox again brings it back.</source>
        <translation>Il est introuvable. Réinstallez Quillbox pour le retrouver.</translation>
    </message>
    <message>
        <source>No web browser could be started. The guide is the file &apos;%s&apos;.</source>
        <translation>Aucun navigateur web n’a pu être lancé. Le guide est le fichier «&#x202f;%s&#x202f;».</translation>
    </message>
    <message numerus="yes">
        <source>about %n seconds left</source>
        <translation>
            <numerusform>environ %n seconde restante</numerusform>
            <numerusform>environ %n secondes restantes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>about %n minutes left</source>
        <translation>
            <numerusform>environ %n minute restante</numerusform>
            <numerusform>environ %n minutes restantes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>about %n hours left</source>
        <translation>
            <numerusform>environ %n heure restante</numerusform>
            <numerusform>environ %n heures restantes</numerusform>
        </translation>
    </message>
    <message>
        <source>%1/s</source>
        <extracomment>A rate: so much in a second.</extracomment>
        <translation>%1/s</translation>
    </message>
    <message>
        <source>a few seconds left</source>
        <translation>quelques secondes restantes</translation>
    </message>
    <message>
        <source>about a minute left</source>
        <translation>environ une minute restante</translation>
    </message>
    <message>
        <source>about an hour left</source>
        <translation>environ une heure restante</translation>
    </message>
    <message>
        <source>more than a day left</source>
        <translation>plus d’un jour restant</translation>
    </message>
</context>
<context>
    <name>SelectView</name>
    <message>
        <source>Select Device</source>
        <translation>Choisir un appareil</translation>
    </message>
    <message>
        <source>&amp;Use found device</source>
        <translation>&amp;Utiliser un appareil trouvé</translation>
    </message>
    <message>
        <source>Use found device</source>
        <translation>Utiliser un appareil trouvé</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Appareils</translation>
    </message>
    <message>
        <source>&amp;Refresh</source>
        <translation>&amp;Actualiser</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Actualiser</translation>
    </message>
    <message>
        <source>&amp;Enter IP address</source>
        <translation>&amp;Saisir l’adresse IP</translation>
    </message>
    <message>
        <source>Enter IP address</source>
        <translation>Saisir l’adresse IP</translation>
    </message>
    <message>
        <source>Address octet 1</source>
        <translation>Octet 1 de l’adresse</translation>
    </message>
    <message>
        <source>Address octet 2</source>
        <translation>Octet 2 de l’adresse</translation>
    </message>
    <message>
        <source>Address octet 3</source>
        <translation>Octet 3 de l’adresse</translation>
    </message>
    <message>
        <source>Address octet 4</source>
        <translation>Octet 4 de l’adresse</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Ai&amp;de</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Connects to a device of the list</source>
        <translation>Se connecte à un appareil de la liste</translation>
    </message>
    <message>
        <source>The devices found on the network</source>
        <translation>Les appareils trouvés sur le réseau</translation>
    </message>
    <message>
        <source>Lists the devices found so far</source>
        <translation>Affiche les appareils trouvés jusqu’ici</translation>
    </message>
    <message>
        <source>Connects to a device whose address you know</source>
        <translation>Se connecte à un appareil dont vous connaissez l’adresse</translation>
    </message>
    <message>
        <source>A number from 0 to 255</source>
        <translation>Un nombre de 0 à 255</translation>
    </message>
    <message>
        <source>Opens the user guide</source>
        <translation>Ouvre le guide de l’utilisateur</translation>
    </message>
    <message>
        <source>Connects to the chosen device</source>
        <translation>Se connecte à l’appareil choisi</translation>
    </message>
    <message>
        <source>Closes this window and changes nothing</source>
        <translation>Ferme cette fenêtre sans rien changer</translation>
    </message>
</context>
</TS>
