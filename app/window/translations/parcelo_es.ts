<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>About</name>
    <message>
        <source>About Parcelo</source>
        <translation>Acerca de Parcelo</translation>
    </message>
    <message>
        <source>&lt;p align=&quot;center&quot;&gt;Turns files into an archive in one gesture.&lt;/p&gt;</source>
        <translation>&lt;p align=&quot;center&quot;&gt;Convierte archivos en un archivo comprimido con un solo gesto.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Send Mail</source>
        <translation>&amp;Enviar correo</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>Visitar el sitio &amp;web</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>Escribir un &amp;comentario</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>Ce&amp;rrar</translation>
    </message>
    <message>
        <source>Copyright © 2026 The Parcelo developers
Free software under the MIT License</source>
        <translation>Copyright © 2026 Los desarrolladores de Parcelo
Software libre con licencia MIT</translation>
    </message>
    <message>
        <source>Made with %1</source>
        <translation>Utiliza %1</translation>
    </message>
</context>
<context>
    <name>AccessoryView</name>
    <message>
        <source>&amp;Archive type:</source>
        <translation>&amp;Tipo:</translation>
    </message>
    <message>
        <source>Archive type</source>
        <translation>Tipo de archivo comprimido</translation>
    </message>
    <message>
        <source>Zip</source>
        <translation>Zip</translation>
    </message>
    <message>
        <source>Zip with extended attributes</source>
        <translation>Zip con atributos extendidos</translation>
    </message>
</context>
<context>
    <name>AdvertTextView</name>
    <message>
        <source>About the maker&apos;s products</source>
        <translation>Sobre los productos del fabricante</translation>
    </message>
    <message>
        <source>Brought to you by </source>
        <translation>Presentado por </translation>
    </message>
    <message>
        <source>Puts your downloads folder in order</source>
        <translation>Pone en orden su carpeta de descargas</translation>
    </message>
    <message>
        <source>Notes that you find again</source>
        <translation>Notas que se vuelven a encontrar</translation>
    </message>
    <message>
        <source>Frames and resizes pictures in one go</source>
        <translation>Enmarca y redimensiona imágenes de una vez</translation>
    </message>
    <message>
        <source>Sends large files without the fuss</source>
        <translation>Envía archivos grandes sin complicaciones</translation>
    </message>
    <message>
        <source>A calm timer for busy days</source>
        <translation>Un temporizador tranquilo para días ajetreados</translation>
    </message>
    <message>
        <source>Weaves your pages into one document</source>
        <translation>Reúne sus páginas en un solo documento</translation>
    </message>
    <message>
        <source>Draws charts from plain tables</source>
        <translation>Dibuja gráficos a partir de tablas sencillas</translation>
    </message>
    <message>
        <source>Free and easy zip utility</source>
        <translation>Utilidad zip gratuita y sencilla</translation>
    </message>
    <message>
        <source>Ready for Ridgeline: everything at half price</source>
        <translation>Listos para Ridgeline: todo a mitad de precio</translation>
    </message>
</context>
<context>
    <name>AlertPanel</name>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>No se puede escribir en «%1»</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>No se puede sustituir el archivo existente «%1»</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>AppController</name>
    <message>
        <source>Same as source</source>
        <translation>Igual que el origen</translation>
    </message>
    <message>
        <source>Email</source>
        <translation>Correo electrónico</translation>
    </message>
    <message>
        <source>Remove Selected Entry</source>
        <translation>Eliminar la entrada seleccionada</translation>
    </message>
    <message>
        <source>Choose a Folder ...</source>
        <translation>Elegir una carpeta…</translation>
    </message>
    <message>
        <source>If you enjoy the way Parcelo makes it easy to zip and email files in one step, you will love Sendora.

Sendora combines the drag-and-drop simplicity of Parcelo with the ability to send large files.</source>
        <translation>Si le gusta lo fácil que resulta comprimir y enviar archivos en un solo paso con Parcelo, le encantará Sendora.

Sendora combina la sencillez de arrastrar y soltar de Parcelo con el envío de archivos grandes.</translation>
    </message>
    <message>
        <source>

For a limited time, apply coupon code &apos;KVW5&apos; (write this down!) during checkout to receive a 30%% discount on Sendora.

Hurry! Offer expires Oct 31, 2010.</source>
        <translation>

Por tiempo limitado, use el código «KVW5» (¡apúntelo!) al comprar y obtenga un descuento del 30%% en Sendora.

¡Dese prisa! La oferta termina el 31 de octubre de 2010.</translation>
    </message>
    <message>
        <source>Sendora Special Offer</source>
        <translation>Oferta especial de Sendora</translation>
    </message>
    <message>
        <source>Sendora</source>
        <translation>Sendora</translation>
    </message>
    <message>
        <source>Learn More</source>
        <translation>Más información</translation>
    </message>
    <message>
        <source>Maybe Next Time</source>
        <translation>Quizás la próxima vez</translation>
    </message>
    <message>
        <source>Don&apos;t Ask Again</source>
        <translation>No volver a preguntar</translation>
    </message>
    <message>
        <source>Share on Facebook</source>
        <translation>Compartir en Facebook</translation>
    </message>
    <message>
        <source>As an independent developer, our single greatest challenge is getting the word out.  Please consider taking a minute to share %1 on your Facebook and help spread the word.

Thank you!</source>
        <translation>Como desarrolladores independientes, nuestro mayor reto es darnos a conocer.  Dedique un minuto a compartir %1 en Facebook y ayúdenos a correr la voz.

¡Gracias!</translation>
    </message>
    <message>
        <source>Maybe next time</source>
        <translation>Quizás la próxima vez</translation>
    </message>
    <message>
        <source>Don&apos;t ask again</source>
        <translation>No volver a preguntar</translation>
    </message>
    <message>
        <source>We Need Your Help!</source>
        <translation>¡Necesitamos su ayuda!</translation>
    </message>
    <message>
        <source>As an indie developer, our biggest challenge is getting the word out.  Please take a minute to rate %1 on the App Store and help spread the word.

Thank you!</source>
        <translation>Como desarrolladores independientes, nuestro mayor reto es darnos a conocer.  Dedique un minuto a valorar %1 en la App Store y ayúdenos a correr la voz.

¡Gracias!</translation>
    </message>
    <message>
        <source>Rate %1</source>
        <translation>Valorar %1</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>The message could not be made</source>
        <translation>No se ha podido crear el mensaje</translation>
    </message>
    <message>
        <source>No mail program took the archive. You can attach it yourself; it stays until you quit:
%1</source>
        <translation>Ningún programa de correo aceptó el archivo comprimido. Puede adjuntarlo usted mismo; estará disponible hasta que salga del programa:
%1</translation>
    </message>
    <message>
        <source>Please check the attachment</source>
        <translation>Compruebe el archivo adjunto</translation>
    </message>
    <message>
        <source>Your mail program was asked to attach the archive, but does not tell whether it did. If it is missing, you find it here until you quit:
%1</source>
        <translation>Se pidió al programa de correo que adjuntara el archivo comprimido, pero no indica si lo hizo. Si falta, lo encontrará aquí hasta que salga del programa:
%1</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>El archivo comprimido está listo</translation>
    </message>
    <message>
        <source>No file manager could be asked to show it:
%1</source>
        <translation>Ningún gestor de archivos pudo mostrarlo:
%1</translation>
    </message>
    <message>
        <source>There are no such files</source>
        <translation>No existen esos archivos</translation>
    </message>
    <message>
        <source>These cannot be archived:
%1</source>
        <translation>No se pueden archivar:
%1</translation>
    </message>
    <message>
        <source>Not everything can be archived</source>
        <translation>No se puede archivar todo</translation>
    </message>
    <message>
        <source>The message may not have been sent yet</source>
        <translation>Es posible que el mensaje aún no se haya enviado</translation>
    </message>
    <message>
        <source>Its archive is deleted when you quit. To keep it, have it moved to this folder, from which you can attach it again:
%1</source>
        <translation>Su archivo comprimido desaparece al salir. Para conservarlo, haga que se mueva a esta carpeta, desde donde podrá adjuntarlo de nuevo:
%1</translation>
    </message>
    <message>
        <source>&amp;Keep and Quit</source>
        <translation>&amp;Conservar y salir</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>&amp;Quit Anyway</source>
        <translation>&amp;Salir de todos modos</translation>
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
        <translation>… y %1 más</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>No todo está en el archivo comprimido</translation>
    </message>
    <message>
        <source>It is made, but these items are missing or not as they were:
%1</source>
        <translation>Se ha creado, pero estos elementos faltan o no están como estaban:
%1</translation>
    </message>
    <message>
        <source>&amp;Copy List</source>
        <translation>&amp;Copiar la lista</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>No se ha podido crear el archivo comprimido</translation>
    </message>
    <message>
        <source>An archive is being made</source>
        <translation>Se está creando un archivo comprimido</translation>
    </message>
    <message>
        <source>If you quit now, it will not be made. Your files stay as they are.</source>
        <translation>Si sale ahora, no se creará. Sus archivos se quedan como están.</translation>
    </message>
    <message>
        <source>&amp;Keep Going</source>
        <translation>&amp;Continuar</translation>
    </message>
    <message>
        <source>&amp;Stop and Quit</source>
        <translation>&amp;Detener y salir</translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation>Después: %1</translation>
    </message>
    <message>
        <source>or press Space to choose, Ctrl+V to paste</source>
        <translation>o Espacio para elegir, Control+V para pegar</translation>
    </message>
    <message>
        <source>These are not files on this computer and will be left out:
%1</source>
        <translation>Estos elementos no son archivos de este equipo y se omitirán:
%1</translation>
    </message>
    <message>
        <source>Same as source: %1</source>
        <translation>Igual que el origen: %1</translation>
    </message>
    <message>
        <source>Files still waiting: %1</source>
        <translation>Archivos aún en espera: %1</translation>
    </message>
    <message>
        <source>They came while another archive was being made, and will not be archived if you quit:
%1</source>
        <translation>Llegaron mientras se creaba otro archivo comprimido. Si sale, no se comprimirán:
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
        <translation>ese tipo de archivo comprimido no existe</translation>
    </message>
    <message>
        <source>this system has no tool for that type (%1)</source>
        <translation>este sistema no tiene herramienta para ese tipo (%1)</translation>
    </message>
    <message>
        <source>a tool could not be started (%2)</source>
        <translation>no se ha podido iniciar una herramienta (%2)</translation>
    </message>
    <message>
        <source>there is nothing to archive</source>
        <translation>no hay nada que archivar</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no name to be archived under</source>
        <translation>«%1» no tiene nombre con el que archivarlo</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read (%2)</source>
        <translation>«%1» no se puede leer (%2)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; leads to no file or folder</source>
        <translation>«%1» no lleva a ningún archivo ni carpeta</translation>
    </message>
    <message>
        <source>a folder has that name</source>
        <translation>hay una carpeta con ese nombre</translation>
    </message>
    <message>
        <source>the disk of that folder is read-only</source>
        <translation>el disco de esa carpeta es de solo lectura</translation>
    </message>
    <message>
        <source>you may not write in that folder</source>
        <translation>no tiene permiso para escribir en esa carpeta</translation>
    </message>
    <message>
        <source>that folder cannot be used (%2)</source>
        <translation>esa carpeta no se puede usar (%2)</translation>
    </message>
    <message>
        <source>the disk of that folder is full</source>
        <translation>el disco de esa carpeta está lleno</translation>
    </message>
    <message>
        <source>the system says: %2</source>
        <translation>el sistema dice: %2</translation>
    </message>
    <message>
        <source>the disk for temporary files is full (%1)</source>
        <translation>el disco de los archivos temporales está lleno (%1)</translation>
    </message>
    <message>
        <source>there is no working folder at %1</source>
        <translation>no hay carpeta de trabajo en %1</translation>
    </message>
    <message>
        <source>a tool failed (%2)</source>
        <translation>una herramienta ha fallado (%2)</translation>
    </message>
    <message>
        <source>the tool has made nothing</source>
        <translation>la herramienta no ha creado nada</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Permiso denegado</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>No existe el archivo o la carpeta</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Operación no permitida</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>Operación no admitida</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Error de entrada/salida</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>No queda espacio en el disco</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Cuota de disco superada</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Sistema de archivos de solo lectura</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Archivo demasiado grande</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Nombre de archivo demasiado largo</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>No es una carpeta</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Es una carpeta</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>El archivo ya existe</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Demasiados enlaces simbólicos</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Demasiados archivos abiertos</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>El archivo ya no está en el servidor</translation>
    </message>
    <message>
        <source>is a FIFO</source>
        <translation>es una tubería</translation>
    </message>
    <message>
        <source>is a socket</source>
        <translation>es un socket</translation>
    </message>
    <message>
        <source>is a device</source>
        <translation>es un dispositivo</translation>
    </message>
    <message>
        <source>changed while it was read</source>
        <translation>cambió mientras se leía</translation>
    </message>
    <message>
        <source>is stored without some of its attributes</source>
        <translation>se guarda sin algunos de sus atributos</translation>
    </message>
    <message>
        <source>shrank while it was read</source>
        <translation>se redujo mientras se leía</translation>
    </message>
    <message>
        <source>grew while it was read; stored up to its earlier size</source>
        <translation>creció mientras se leía; guardado hasta su tamaño anterior</translation>
    </message>
    <message>
        <source>was moved while it was read</source>
        <translation>se movió mientras se leía</translation>
    </message>
    <message>
        <source>was replaced while its folder was read</source>
        <translation>se sustituyó mientras se leía su carpeta</translation>
    </message>
    <message>
        <source>was replaced by a link while its folder was read</source>
        <translation>se sustituyó por un enlace mientras se leía su carpeta</translation>
    </message>
    <message>
        <source>is a folder it lies in</source>
        <translation>es una carpeta que lo contiene</translation>
    </message>
    <message>
        <source>links to nothing; stored as a link</source>
        <translation>enlace a la nada; guardado como enlace</translation>
    </message>
    <message>
        <source>links in a circle; stored as a link</source>
        <translation>enlace en círculo; guardado como enlace</translation>
    </message>
    <message>
        <source>links to a folder it lies in; stored as a link</source>
        <translation>enlace a una carpeta que lo contiene; guardado como enlace</translation>
    </message>
    <message>
        <source>does not tell its size; stored empty</source>
        <translation>no indica su tamaño; guardado vacío</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>No se puede sustituir el archivo existente «%1»</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>No se puede escribir en «%1»</translation>
    </message>
    <message>
        <source>the archive would replace &apos;%1&apos;, which is to be in it</source>
        <translation>el archivo comprimido sustituiría a «%1», que debe ir en él</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be the name of an archive</source>
        <translation>«%1» no puede ser el nombre de un archivo comprimido</translation>
    </message>
    <message>
        <source>not a file on this computer</source>
        <translation>no es un archivo de este equipo</translation>
    </message>
</context>
<context>
    <name>DropView</name>
    <message>
        <source>Drop Files Here</source>
        <translation>Suelte los archivos aquí</translation>
    </message>
    <message>
        <source>Drop files and folders here, or press to choose files</source>
        <translation>Suelte aquí archivos y carpetas, o pulse para elegir archivos</translation>
    </message>
</context>
<context>
    <name>EmailWindow</name>
    <message>
        <source>Email Archive</source>
        <translation>Enviar por correo</translation>
    </message>
    <message>
        <source>The archive will be attached to a new message.</source>
        <translation>El archivo comprimido se adjuntará a un mensaje nuevo.</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Nombre:</translation>
    </message>
    <message>
        <source>Archive name</source>
        <translation>Nombre del archivo comprimido</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Cance&amp;lar</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;Aceptar</translation>
    </message>
</context>
<context>
    <name>FeedDownload</name>
    <message>
        <source>What the server sends is too large to be a list of versions.</source>
        <translation>Lo que envía el servidor es demasiado grande para ser una lista de versiones.</translation>
    </message>
    <message>
        <source>The server does not answer in time.</source>
        <translation>El servidor no responde a tiempo.</translation>
    </message>
    <message>
        <source>The server answers with error %1.</source>
        <translation>El servidor responde con el error %1.</translation>
    </message>
</context>
<context>
    <name>FileChooser</name>
    <message>
        <source>Show &amp;hidden files</source>
        <translation>Mostrar archivos &amp;ocultos</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Cance&amp;lar</translation>
    </message>
    <message>
        <source>Ch&amp;oose</source>
        <translation>&amp;Elegir</translation>
    </message>
    <message>
        <source>Choose Files and Folders</source>
        <translation>Elegir archivos y carpetas</translation>
    </message>
    <message>
        <source>Files and folders</source>
        <translation>Archivos y carpetas</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Carpeta:</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>&amp;Ruta:</translation>
    </message>
    <message>
        <source>There is nothing at this path.</source>
        <translation>No hay nada en esta ruta.</translation>
    </message>
    <message>
        <source>%1 items selected</source>
        <translation>%1 elementos seleccionados</translation>
    </message>
    <message>
        <source>This folder cannot be read.</source>
        <translation>No se puede leer esta carpeta.</translation>
    </message>
</context>
<context>
    <name>FileListView</name>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Tamaño</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Modificado</translation>
    </message>
</context>
<context>
    <name>FolderMenu</name>
    <message>
        <source>Home</source>
        <translation>Carpeta personal</translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Escritorio</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Otra…</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Carpetas</translation>
    </message>
</context>
<context>
    <name>JobNotice</name>
    <message>
        <source>An archive is being made</source>
        <translation>Se está creando un archivo comprimido</translation>
    </message>
    <message>
        <source>Making an archive</source>
        <translation>Creando un archivo comprimido</translation>
    </message>
    <message>
        <source>%1: %2%</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>No se ha podido crear el archivo comprimido</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>El archivo comprimido está listo</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>No todo está en el archivo comprimido</translation>
    </message>
    <message>
        <source>Open Parcelo</source>
        <translation>Abrir Parcelo</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Mostrar</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Abrir</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>Completed</source>
        <translation>Completado</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Cancelado</translation>
    </message>
    <message>
        <source>TYPE_MAC</source>
        <translation>Conserva además los recursos y los atributos extendidos, en una carpeta aparte.</translation>
    </message>
    <message>
        <source>TYPE_PC</source>
        <translation>Se abre en cualquier equipo. Se conservan permisos, fechas y enlaces.</translation>
    </message>
    <message>
        <source>Okay</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;Destination:</source>
        <translation>&amp;Destino:</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Destino</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Editar</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Ventana</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;yuda</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>Ce&amp;rrar</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>&amp;Paste Files</source>
        <translation>&amp;Pegar archivos</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>Pre&amp;ferencias…</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>&amp;Minimizar</translation>
    </message>
    <message>
        <source>Parcelo &amp;Help</source>
        <translation>&amp;Ayuda de Parcelo</translation>
    </message>
    <message>
        <source>O&amp;nline Help</source>
        <translation>Ayuda en lí&amp;nea</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>Visitar el sitio &amp;web</translation>
    </message>
    <message>
        <source>Visit F&amp;orum</source>
        <translation>Visitar el &amp;foro</translation>
    </message>
    <message>
        <source>&amp;Share on Facebook</source>
        <translation>Comparti&amp;r en Facebook</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>Escribir un &amp;comentario</translation>
    </message>
    <message>
        <source>Visit Sho&amp;p</source>
        <translation>Visitar la &amp;tienda</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>&amp;Buscar actualizaciones…</translation>
    </message>
    <message>
        <source>&amp;About Parcelo</source>
        <translation>Acerca &amp;de Parcelo</translation>
    </message>
    <message>
        <source>Ma&amp;ximize</source>
        <translation>Ma&amp;ximizar</translation>
    </message>
    <message>
        <source>&amp;Choose Files and Folders…</source>
        <translation>&amp;Elegir archivos y carpetas…</translation>
    </message>
</context>
<context>
    <name>OpenPanel</name>
    <message>
        <source>Choose a Folder</source>
        <translation>Elegir una carpeta</translation>
    </message>
</context>
<context>
    <name>Preference</name>
    <message>
        <source>Preferences</source>
        <translation>Preferencias</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archivos comprimidos</translation>
    </message>
    <message>
        <source>Com&amp;pression:</source>
        <translation>Com&amp;presión:</translation>
    </message>
    <message>
        <source>faster</source>
        <translation>más rápido</translation>
    </message>
    <message>
        <source>Compression level</source>
        <translation>Nivel de compresión</translation>
    </message>
    <message>
        <source>smaller</source>
        <translation>más pequeño</translation>
    </message>
    <message>
        <source>&amp;Keep the extension in the proposed name</source>
        <translation>&amp;Conservar la extensión en el nombre propuesto</translation>
    </message>
    <message>
        <source>&amp;Show the finished archive in the file manager</source>
        <translation>&amp;Mostrar el resultado en el gestor de archivos</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programa</translation>
    </message>
    <message>
        <source>&amp;Quit after archiving files opened with the icon</source>
        <translation>&amp;Salir tras comprimir archivos abiertos con el icono</translation>
    </message>
    <message>
        <source>Keep &amp;running when the window is closed</source>
        <translation>Se&amp;guir en marcha al cerrar la ventana</translation>
    </message>
    <message>
        <source>Check for &amp;updates at start</source>
        <translation>&amp;Buscar actualizaciones al iniciar</translation>
    </message>
    <message>
        <source>&amp;Hide the line about our other products</source>
        <translation>&amp;Ocultar la línea sobre nuestros otros productos</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Cance&amp;lar</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;Aceptar</translation>
    </message>
</context>
<context>
    <name>ProgressText</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 de %2</translation>
    </message>
    <message>
        <source>%1 of %2 (%3/s)</source>
        <translation>%1 de %2 (%3/s)</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>Quedan unos segundos</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>Quedan unos %1 segundos</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Queda un minuto aproximadamente</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>Quedan unos %1 minutos</translation>
    </message>
    <message>
        <source>About %1 hours left</source>
        <translation>Quedan unas %1 horas</translation>
    </message>
</context>
<context>
    <name>ProgressWindow</name>
    <message>
        <source>Making Archive</source>
        <translation>Creando el archivo comprimido</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progreso</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Cance&amp;lar</translation>
    </message>
</context>
<context>
    <name>QKWindow</name>
    <message>
        <source>Hide Toolbar</source>
        <translation>Ocultar la barra de herramientas</translation>
    </message>
    <message>
        <source>Show Toolbar</source>
        <translation>Mostrar la barra de herramientas</translation>
    </message>
</context>
<context>
    <name>SUUpdater</name>
    <message>
        <source>Updates come with your system&apos;s software.</source>
        <translation>Las actualizaciones llegan con el software de su sistema.</translation>
    </message>
    <message>
        <source>You have version %1.</source>
        <translation>Tiene la versión %1.</translation>
    </message>
    <message>
        <source>No address is set at which to look for new versions.</source>
        <translation>No hay ninguna dirección configurada para buscar versiones nuevas.</translation>
    </message>
    <message>
        <source>The list of versions cannot be read.</source>
        <translation>No se puede leer la lista de versiones.</translation>
    </message>
    <message>
        <source>%1 is up to date.</source>
        <translation>%1 está actualizado.</translation>
    </message>
    <message>
        <source>You have version %1, and there is none that is newer.</source>
        <translation>Tiene la versión %1 y no hay ninguna más reciente.</translation>
    </message>
    <message>
        <source>It was not possible to look for new versions.</source>
        <translation>No fue posible buscar versiones nuevas.</translation>
    </message>
</context>
<context>
    <name>SavePanel</name>
    <message>
        <source>Save Archive</source>
        <translation>Guardar el archivo comprimido</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Nombre:</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Carpeta:</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>Cance&amp;lar</translation>
    </message>
    <message>
        <source>&amp;Use “%1”</source>
        <translation>&amp;Usar «%1»</translation>
    </message>
    <message>
        <source>This folder cannot be found. Choose another one.</source>
        <translation>No se encuentra esta carpeta. Elija otra.</translation>
    </message>
    <message>
        <source>You cannot save in this folder. Choose another one.</source>
        <translation>No puede guardar en esta carpeta. Elija otra.</translation>
    </message>
    <message>
        <source>A name cannot contain a slash.</source>
        <translation>Un nombre no puede contener una barra.</translation>
    </message>
    <message>
        <source>This cannot be a name.</source>
        <translation>Esto no puede ser un nombre.</translation>
    </message>
    <message>
        <source>This name is too long.</source>
        <translation>Este nombre es demasiado largo.</translation>
    </message>
    <message>
        <source>There is a folder named “%1”.</source>
        <translation>Existe una carpeta llamada «%1».</translation>
    </message>
    <message>
        <source>“%1” exists and will be replaced (%2, %3).</source>
        <translation>«%1» ya existe y se reemplazará (%2, %3).</translation>
    </message>
    <message>
        <source>Names that begin with a dot are hidden.</source>
        <translation>Los nombres que empiezan por un punto se ocultan.</translation>
    </message>
    <message>
        <source>Some systems refuse names with “%1”.</source>
        <translation>Algunos sistemas rechazan nombres con «%1».</translation>
    </message>
    <message>
        <source>Windows refuses this name.</source>
        <translation>Windows rechaza este nombre.</translation>
    </message>
    <message>
        <source>This name begins or ends with a space.</source>
        <translation>Este nombre empieza o termina con un espacio.</translation>
    </message>
</context>
<context>
    <name>UpdateSheet</name>
    <message>
        <source>Software Update</source>
        <translation>Actualización de software</translation>
    </message>
    <message>
        <source>An important update of %1 is available.</source>
        <translation>Hay una actualización importante de %1 disponible.</translation>
    </message>
    <message>
        <source>A new version of %1 is available.</source>
        <translation>Hay una nueva versión de %1 disponible.</translation>
    </message>
    <message>
        <source>%1 %2 can be downloaded; you have %3.</source>
        <translation>Se puede descargar %1 %2; usted tiene %3.</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>Novedades</translation>
    </message>
    <message>
        <source>&amp;Not Now</source>
        <translation>Ahora &amp;no</translation>
    </message>
    <message>
        <source>&amp;Open Download Page</source>
        <translation>&amp;Abrir la página de descarga</translation>
    </message>
    <message>
        <source>&amp;What Is New</source>
        <translation>Nove&amp;dades</translation>
    </message>
</context>
</TS>
