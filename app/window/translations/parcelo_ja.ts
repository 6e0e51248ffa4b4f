<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja">
<context>
    <name>About</name>
    <message>
        <source>About Parcelo</source>
        <translation>Parceloについて</translation>
    </message>
    <message>
        <source>&lt;p align=&quot;center&quot;&gt;Turns files into an archive in one gesture.&lt;/p&gt;</source>
        <translation>&lt;p align=&quot;center&quot;&gt;ファイルをワンアクションでアーカイブにします。&lt;/p&gt;</translation>
    </message>
    <message>
        <source>&amp;Send Mail</source>
        <translation>メールを送る(&amp;S)</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>ウェブサイトを開く(&amp;W)</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>コメントを書く(&amp;C)</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>閉じる(&amp;L)</translation>
    </message>
    <message>
        <source>Copyright © 2026 The Parcelo developers
Free software under the MIT License</source>
        <translation>Copyright © 2026 Parcelo の開発者
MIT ライセンスのフリーソフトウェア</translation>
    </message>
    <message>
        <source>Made with %1</source>
        <translation>使用ライブラリ: %1</translation>
    </message>
</context>
<context>
    <name>AccessoryView</name>
    <message>
        <source>&amp;Archive type:</source>
        <translation>アーカイブの種類(&amp;A):</translation>
    </message>
    <message>
        <source>Archive type</source>
        <translation>アーカイブの種類</translation>
    </message>
    <message>
        <source>Zip</source>
        <translation>Zip</translation>
    </message>
    <message>
        <source>Zip with extended attributes</source>
        <translation>拡張属性付きZip</translation>
    </message>
</context>
<context>
    <name>AdvertTextView</name>
    <message>
        <source>About the maker&apos;s products</source>
        <translation>開発元の製品について</translation>
    </message>
    <message>
        <source>Brought to you by </source>
        <translation>提供：</translation>
    </message>
    <message>
        <source>Puts your downloads folder in order</source>
        <translation>ダウンロードフォルダを整理</translation>
    </message>
    <message>
        <source>Notes that you find again</source>
        <translation>あとで見つかるメモ</translation>
    </message>
    <message>
        <source>Frames and resizes pictures in one go</source>
        <translation>画像の枠付けとサイズ変更を一度に</translation>
    </message>
    <message>
        <source>Sends large files without the fuss</source>
        <translation>大きなファイルを手軽に送信</translation>
    </message>
    <message>
        <source>A calm timer for busy days</source>
        <translation>忙しい日のための静かなタイマー</translation>
    </message>
    <message>
        <source>Weaves your pages into one document</source>
        <translation>ばらばらのページをひとつの文書に</translation>
    </message>
    <message>
        <source>Draws charts from plain tables</source>
        <translation>表からグラフを作成</translation>
    </message>
    <message>
        <source>Free and easy zip utility</source>
        <translation>無料でかんたんなZipユーティリティ</translation>
    </message>
    <message>
        <source>Ready for Ridgeline: everything at half price</source>
        <translation>Ridgeline対応：全品半額</translation>
    </message>
</context>
<context>
    <name>AlertPanel</name>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>「%1」に書き込めません</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>既存のファイル「%1」を置き換えられません</translation>
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
        <translation>元の場所と同じ</translation>
    </message>
    <message>
        <source>Email</source>
        <translation>メール</translation>
    </message>
    <message>
        <source>Remove Selected Entry</source>
        <translation>選択した項目を削除</translation>
    </message>
    <message>
        <source>Choose a Folder ...</source>
        <translation>フォルダを選択…</translation>
    </message>
    <message>
        <source>If you enjoy the way Parcelo makes it easy to zip and email files in one step, you will love Sendora.

Sendora combines the drag-and-drop simplicity of Parcelo with the ability to send large files.</source>
        <translation>ファイルの圧縮とメール送信を一度に済ませるParceloを気に入っていただけたなら、Sendoraもきっとお気に召すはずです。

Sendoraは、Parceloのドラッグ＆ドロップの手軽さで大きなファイルを送信できます。</translation>
    </message>
    <message>
        <source>

For a limited time, apply coupon code &apos;KVW5&apos; (write this down!) during checkout to receive a 30%% discount on Sendora.

Hurry! Offer expires Oct 31, 2010.</source>
        <translation>

期間限定：ご購入時にクーポンコード「KVW5」（メモしてください）を入力すると、Sendoraが30%%割引になります。

お急ぎください。2010年10月31日までです。</translation>
    </message>
    <message>
        <source>Sendora Special Offer</source>
        <translation>Sendora特別キャンペーン</translation>
    </message>
    <message>
        <source>Sendora</source>
        <translation>Sendora</translation>
    </message>
    <message>
        <source>Learn More</source>
        <translation>詳しく見る</translation>
    </message>
    <message>
        <source>Maybe Next Time</source>
        <translation>また今度</translation>
    </message>
    <message>
        <source>Don&apos;t Ask Again</source>
        <translation>今後表示しない</translation>
    </message>
    <message>
        <source>Share on Facebook</source>
        <translation>Facebookで共有</translation>
    </message>
    <message>
        <source>As an independent developer, our single greatest challenge is getting the word out.  Please consider taking a minute to share %1 on your Facebook and help spread the word.

Thank you!</source>
        <translation>独立系の開発者にとって最大の課題は、製品を知っていただくことです。  Facebookで%1を紹介し、広めるのにご協力ください。

ありがとうございます。</translation>
    </message>
    <message>
        <source>Maybe next time</source>
        <translation>また今度</translation>
    </message>
    <message>
        <source>Don&apos;t ask again</source>
        <translation>今後表示しない</translation>
    </message>
    <message>
        <source>We Need Your Help!</source>
        <translation>ご協力のお願い</translation>
    </message>
    <message>
        <source>As an indie developer, our biggest challenge is getting the word out.  Please take a minute to rate %1 on the App Store and help spread the word.

Thank you!</source>
        <translation>独立系の開発者にとって最大の課題は、製品を知っていただくことです。  App Storeで%1を評価し、広めるのにご協力ください。

ありがとうございます。</translation>
    </message>
    <message>
        <source>Rate %1</source>
        <translation>%1を評価</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>The message could not be made</source>
        <translation>メッセージを作成できませんでした</translation>
    </message>
    <message>
        <source>No mail program took the archive. You can attach it yourself; it stays until you quit:
%1</source>
        <translation>アーカイブを添付できるメールソフトがありませんでした。ご自分で添付できます。終了するまで次の場所にあります：
%1</translation>
    </message>
    <message>
        <source>Please check the attachment</source>
        <translation>添付ファイルをご確認ください</translation>
    </message>
    <message>
        <source>Your mail program was asked to attach the archive, but does not tell whether it did. If it is missing, you find it here until you quit:
%1</source>
        <translation>メールソフトにアーカイブの添付を依頼しましたが、添付されたかどうかは通知されません。ない場合は、終了するまで次の場所にあります：
%1</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>アーカイブを作成しました</translation>
    </message>
    <message>
        <source>No file manager could be asked to show it:
%1</source>
        <translation>ファイルマネージャで表示できませんでした：
%1</translation>
    </message>
    <message>
        <source>There are no such files</source>
        <translation>ファイルが見つかりません</translation>
    </message>
    <message>
        <source>These cannot be archived:
%1</source>
        <translation>アーカイブできません：
%1</translation>
    </message>
    <message>
        <source>Not everything can be archived</source>
        <translation>アーカイブできない項目があります</translation>
    </message>
    <message>
        <source>The message may not have been sent yet</source>
        <translation>メッセージはまだ送信されていない可能性があります</translation>
    </message>
    <message>
        <source>Its archive is deleted when you quit. To keep it, have it moved to this folder, from which you can attach it again:
%1</source>
        <translation>終了するとアーカイブは失われます。残すには次のフォルダへ移動してください。そこから改めて添付できます：
%1</translation>
    </message>
    <message>
        <source>&amp;Keep and Quit</source>
        <translation>残して終了(&amp;K)</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>&amp;Quit Anyway</source>
        <translation>そのまま終了(&amp;Q)</translation>
    </message>
    <message>
        <source>%1. %2.</source>
        <translation>%1。%2。</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1：%2</translation>
    </message>
    <message>
        <source>… and %1 more</source>
        <translation>…ほか %1 件</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>アーカイブに入らなかったものがあります</translation>
    </message>
    <message>
        <source>It is made, but these items are missing or not as they were:
%1</source>
        <translation>アーカイブは作成されましたが、次の項目は入っていないか、元のままではありません：
%1</translation>
    </message>
    <message>
        <source>&amp;Copy List</source>
        <translation>リストをコピー(&amp;C)</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>アーカイブを作成できませんでした</translation>
    </message>
    <message>
        <source>An archive is being made</source>
        <translation>アーカイブを作成しています</translation>
    </message>
    <message>
        <source>If you quit now, it will not be made. Your files stay as they are.</source>
        <translation>今終了すると、アーカイブは作成されません。元のファイルは変わりません。</translation>
    </message>
    <message>
        <source>&amp;Keep Going</source>
        <translation>続ける(&amp;K)</translation>
    </message>
    <message>
        <source>&amp;Stop and Quit</source>
        <translation>中止して終了(&amp;S)</translation>
    </message>
    <message>
        <source>Next: %1</source>
        <translation>次：%1</translation>
    </message>
    <message>
        <source>or press Space to choose, Ctrl+V to paste</source>
        <translation>または Space で選択、Ctrl+V で貼り付け</translation>
    </message>
    <message>
        <source>These are not files on this computer and will be left out:
%1</source>
        <translation>次の項目はこのコンピュータのファイルではないため、除外されます：
%1</translation>
    </message>
    <message>
        <source>Same as source: %1</source>
        <translation>元の場所と同じ：%1</translation>
    </message>
    <message>
        <source>Files still waiting: %1</source>
        <translation>待機中のファイル：%1</translation>
    </message>
    <message>
        <source>They came while another archive was being made, and will not be archived if you quit:
%1</source>
        <translation>別のアーカイブの作成中に届いたファイルです。終了するとアーカイブされません：
%1</translation>
    </message>
    <message>
        <source>%1.</source>
        <translation>%1。</translation>
    </message>
</context>
<context>
    <name>ArchiveProblem</name>
    <message>
        <source>there is no such type of archive</source>
        <translation>その種類のアーカイブはありません</translation>
    </message>
    <message>
        <source>this system has no tool for that type (%1)</source>
        <translation>このシステムにはその種類のためのツールがありません（%1）</translation>
    </message>
    <message>
        <source>a tool could not be started (%2)</source>
        <translation>ツールを起動できませんでした（%2）</translation>
    </message>
    <message>
        <source>there is nothing to archive</source>
        <translation>アーカイブするものがありません</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no name to be archived under</source>
        <translation>「%1」にはアーカイブに使える名前がありません</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be read (%2)</source>
        <translation>「%1」を読み取れません（%2）</translation>
    </message>
    <message>
        <source>&apos;%1&apos; leads to no file or folder</source>
        <translation>「%1」の先にファイルもフォルダもありません</translation>
    </message>
    <message>
        <source>a folder has that name</source>
        <translation>その名前のフォルダがあります</translation>
    </message>
    <message>
        <source>the disk of that folder is read-only</source>
        <translation>そのフォルダのディスクは読み取り専用です</translation>
    </message>
    <message>
        <source>you may not write in that folder</source>
        <translation>そのフォルダに書き込む権限がありません</translation>
    </message>
    <message>
        <source>that folder cannot be used (%2)</source>
        <translation>そのフォルダは使えません（%2）</translation>
    </message>
    <message>
        <source>the disk of that folder is full</source>
        <translation>そのフォルダのディスクがいっぱいです</translation>
    </message>
    <message>
        <source>the system says: %2</source>
        <translation>システムからの通知：%2</translation>
    </message>
    <message>
        <source>the disk for temporary files is full (%1)</source>
        <translation>一時ファイル用のディスクがいっぱいです（%1）</translation>
    </message>
    <message>
        <source>there is no working folder at %1</source>
        <translation>作業フォルダ%1がありません</translation>
    </message>
    <message>
        <source>a tool failed (%2)</source>
        <translation>ツールが失敗しました（%2）</translation>
    </message>
    <message>
        <source>the tool has made nothing</source>
        <translation>ツールは何も作成しませんでした</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>許可がありません</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>ファイルまたはフォルダがありません</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>許可されていない操作です</translation>
    </message>
    <message>
        <source>Operation not supported</source>
        <translation>サポートされていない操作です</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>入出力エラー</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>ディスクに空きがありません</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>ディスクの割り当てを超えました</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>読み取り専用のファイルシステムです</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>ファイルが大きすぎます</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>ファイル名が長すぎます</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>フォルダではありません</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>フォルダです</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>ファイルがすでにあります</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>シンボリックリンクの階層が多すぎます</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>開いているファイルが多すぎます</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>サーバ上のファイルがなくなりました</translation>
    </message>
    <message>
        <source>is a FIFO</source>
        <translation>パイプです</translation>
    </message>
    <message>
        <source>is a socket</source>
        <translation>ソケットです</translation>
    </message>
    <message>
        <source>is a device</source>
        <translation>デバイスです</translation>
    </message>
    <message>
        <source>changed while it was read</source>
        <translation>読み取り中に変更されました</translation>
    </message>
    <message>
        <source>is stored without some of its attributes</source>
        <translation>一部の属性なしで保存されました</translation>
    </message>
    <message>
        <source>shrank while it was read</source>
        <translation>読み取り中に短くなりました</translation>
    </message>
    <message>
        <source>grew while it was read; stored up to its earlier size</source>
        <translation>読み取り中に長くなりました。元のサイズまで保存されています</translation>
    </message>
    <message>
        <source>was moved while it was read</source>
        <translation>読み取り中に移動されました</translation>
    </message>
    <message>
        <source>was replaced while its folder was read</source>
        <translation>フォルダの読み取り中に置き換えられました</translation>
    </message>
    <message>
        <source>was replaced by a link while its folder was read</source>
        <translation>フォルダの読み取り中にリンクに置き換えられました</translation>
    </message>
    <message>
        <source>is a folder it lies in</source>
        <translation>それ自身を含むフォルダです</translation>
    </message>
    <message>
        <source>links to nothing; stored as a link</source>
        <translation>リンク先がありません。リンクとして保存されています</translation>
    </message>
    <message>
        <source>links in a circle; stored as a link</source>
        <translation>リンクが循環しています。リンクとして保存されています</translation>
    </message>
    <message>
        <source>links to a folder it lies in; stored as a link</source>
        <translation>それ自身を含むフォルダへのリンクです。リンクとして保存されています</translation>
    </message>
    <message>
        <source>does not tell its size; stored empty</source>
        <translation>サイズが分かりません。空のまま保存されています</translation>
    </message>
    <message>
        <source>Unable to replace existing file at &apos;%1&apos;</source>
        <translation>既存のファイル「%1」を置き換えられません</translation>
    </message>
    <message>
        <source>Unable to write to &apos;%1&apos;</source>
        <translation>「%1」に書き込めません</translation>
    </message>
    <message>
        <source>the archive would replace &apos;%1&apos;, which is to be in it</source>
        <translation>アーカイブする項目「%1」自体を置き換えてしまいます</translation>
    </message>
    <message>
        <source>&apos;%1&apos; cannot be the name of an archive</source>
        <translation>「%1」という名前は付けられません</translation>
    </message>
    <message>
        <source>not a file on this computer</source>
        <translation>このコンピュータのファイルではありません</translation>
    </message>
</context>
<context>
    <name>DropView</name>
    <message>
        <source>Drop Files Here</source>
        <translation>ここにファイルをドロップ</translation>
    </message>
    <message>
        <source>Drop files and folders here, or press to choose files</source>
        <translation>ファイルやフォルダをここにドロップするか、押してファイルを選択します</translation>
    </message>
</context>
<context>
    <name>EmailWindow</name>
    <message>
        <source>Email Archive</source>
        <translation>アーカイブをメールで送信</translation>
    </message>
    <message>
        <source>The archive will be attached to a new message.</source>
        <translation>アーカイブは新しいメッセージに添付されます。</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>名前(&amp;N):</translation>
    </message>
    <message>
        <source>Archive name</source>
        <translation>アーカイブの名前</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
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
        <translation>サーバからの応答がバージョン一覧としては大きすぎます。</translation>
    </message>
    <message>
        <source>The server does not answer in time.</source>
        <translation>サーバが時間内に応答しません。</translation>
    </message>
    <message>
        <source>The server answers with error %1.</source>
        <translation>サーバがエラー%1を返しました。</translation>
    </message>
</context>
<context>
    <name>FileChooser</name>
    <message>
        <source>Show &amp;hidden files</source>
        <translation>隠しファイルを表示(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
    </message>
    <message>
        <source>Ch&amp;oose</source>
        <translation>選択(&amp;O)</translation>
    </message>
    <message>
        <source>Choose Files and Folders</source>
        <translation>ファイルとフォルダを選択</translation>
    </message>
    <message>
        <source>Files and folders</source>
        <translation>ファイルとフォルダ</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>フォルダ(&amp;F):</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>パス(&amp;P):</translation>
    </message>
    <message>
        <source>There is nothing at this path.</source>
        <translation>このパスには何もありません。</translation>
    </message>
    <message>
        <source>%1 items selected</source>
        <translation>%1項目を選択</translation>
    </message>
    <message>
        <source>This folder cannot be read.</source>
        <translation>このフォルダを読み込めません。</translation>
    </message>
</context>
<context>
    <name>FileListView</name>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>サイズ</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>更新日時</translation>
    </message>
</context>
<context>
    <name>FolderMenu</name>
    <message>
        <source>Home</source>
        <translation>ホーム</translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>デスクトップ</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>その他…</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>フォルダ</translation>
    </message>
</context>
<context>
    <name>JobNotice</name>
    <message>
        <source>An archive is being made</source>
        <translation>アーカイブを作成しています</translation>
    </message>
    <message>
        <source>Making an archive</source>
        <translation>アーカイブを作成中</translation>
    </message>
    <message>
        <source>%1: %2%</source>
        <translation>%1：%2%</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>The archive could not be made</source>
        <translation>アーカイブを作成できませんでした</translation>
    </message>
    <message>
        <source>The archive is made</source>
        <translation>アーカイブを作成しました</translation>
    </message>
    <message>
        <source>Not everything is in the archive</source>
        <translation>アーカイブに入らなかったものがあります</translation>
    </message>
    <message>
        <source>Open Parcelo</source>
        <translation>Parceloを開く</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>表示</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
</context>
<context>
    <name>Localizable</name>
    <message>
        <source>Completed</source>
        <translation>完了</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>キャンセルしました</translation>
    </message>
    <message>
        <source>TYPE_MAC</source>
        <translation>リソースフォークと拡張属性も専用のフォルダに保存します。</translation>
    </message>
    <message>
        <source>TYPE_PC</source>
        <translation>どのコンピュータでも開けます。アクセス権、日時、リンクを保持します。</translation>
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
        <translation>保存先(&amp;D):</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>保存先</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>ウィンドウ(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>C&amp;lose</source>
        <translation>閉じる(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Paste Files</source>
        <translation>ファイルを貼り付け(&amp;P)</translation>
    </message>
    <message>
        <source>P&amp;references…</source>
        <translation>環境設定(&amp;R)…</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>最小化(&amp;M)</translation>
    </message>
    <message>
        <source>Parcelo &amp;Help</source>
        <translation>Parceloヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>O&amp;nline Help</source>
        <translation>オンラインヘルプ(&amp;N)</translation>
    </message>
    <message>
        <source>Visit &amp;Website</source>
        <translation>ウェブサイトを開く(&amp;W)</translation>
    </message>
    <message>
        <source>Visit F&amp;orum</source>
        <translation>フォーラムを開く(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Share on Facebook</source>
        <translation>Facebookで共有(&amp;S)</translation>
    </message>
    <message>
        <source>Write a &amp;Comment</source>
        <translation>コメントを書く(&amp;C)</translation>
    </message>
    <message>
        <source>Visit Sho&amp;p</source>
        <translation>ショップを開く(&amp;P)</translation>
    </message>
    <message>
        <source>Check for &amp;Updates…</source>
        <translation>アップデートを確認(&amp;U)…</translation>
    </message>
    <message>
        <source>&amp;About Parcelo</source>
        <translation>Parceloについて(&amp;A)</translation>
    </message>
    <message>
        <source>Ma&amp;ximize</source>
        <translation>最大化(&amp;X)</translation>
    </message>
    <message>
        <source>&amp;Choose Files and Folders…</source>
        <translation>ファイルとフォルダを選択(&amp;C)…</translation>
    </message>
</context>
<context>
    <name>OpenPanel</name>
    <message>
        <source>Choose a Folder</source>
        <translation>フォルダを選択</translation>
    </message>
</context>
<context>
    <name>Preference</name>
    <message>
        <source>Preferences</source>
        <translation>環境設定</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>アーカイブ</translation>
    </message>
    <message>
        <source>Com&amp;pression:</source>
        <translation>圧縮(&amp;P):</translation>
    </message>
    <message>
        <source>faster</source>
        <translation>速い</translation>
    </message>
    <message>
        <source>Compression level</source>
        <translation>圧縮レベル</translation>
    </message>
    <message>
        <source>smaller</source>
        <translation>小さい</translation>
    </message>
    <message>
        <source>&amp;Keep the extension in the proposed name</source>
        <translation>名前の候補に拡張子を残す(&amp;K)</translation>
    </message>
    <message>
        <source>&amp;Show the finished archive in the file manager</source>
        <translation>完成したアーカイブをファイルマネージャで表示(&amp;S)</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>プログラム</translation>
    </message>
    <message>
        <source>&amp;Quit after archiving files opened with the icon</source>
        <translation>アイコンで開いたファイルのアーカイブ後に終了(&amp;Q)</translation>
    </message>
    <message>
        <source>Keep &amp;running when the window is closed</source>
        <translation>ウィンドウを閉じても終了しない(&amp;R)</translation>
    </message>
    <message>
        <source>Check for &amp;updates at start</source>
        <translation>起動時にアップデートを確認(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Hide the line about our other products</source>
        <translation>他の製品の案内を隠す(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
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
        <translation>%2中%1</translation>
    </message>
    <message>
        <source>%1 of %2 (%3/s)</source>
        <translation>%2中%1（%3/秒）</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>残り数秒</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>残り約%1秒</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>残り約1分</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>残り約%1分</translation>
    </message>
    <message>
        <source>About %1 hours left</source>
        <translation>残り約%1時間</translation>
    </message>
</context>
<context>
    <name>ProgressWindow</name>
    <message>
        <source>Making Archive</source>
        <translation>アーカイブを作成中</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>進捗</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
    </message>
</context>
<context>
    <name>QKWindow</name>
    <message>
        <source>Hide Toolbar</source>
        <translation>ツールバーを隠す</translation>
    </message>
    <message>
        <source>Show Toolbar</source>
        <translation>ツールバーを表示</translation>
    </message>
</context>
<context>
    <name>SUUpdater</name>
    <message>
        <source>Updates come with your system&apos;s software.</source>
        <translation>アップデートはシステムのソフトウェアと一緒に提供されます。</translation>
    </message>
    <message>
        <source>You have version %1.</source>
        <translation>お使いのバージョンは%1です。</translation>
    </message>
    <message>
        <source>No address is set at which to look for new versions.</source>
        <translation>新しいバージョンを確認するアドレスが設定されていません。</translation>
    </message>
    <message>
        <source>The list of versions cannot be read.</source>
        <translation>バージョン一覧を読み取れません。</translation>
    </message>
    <message>
        <source>%1 is up to date.</source>
        <translation>%1は最新です。</translation>
    </message>
    <message>
        <source>You have version %1, and there is none that is newer.</source>
        <translation>お使いのバージョンは%1で、これより新しいものはありません。</translation>
    </message>
    <message>
        <source>It was not possible to look for new versions.</source>
        <translation>新しいバージョンを確認できませんでした。</translation>
    </message>
</context>
<context>
    <name>SavePanel</name>
    <message>
        <source>Save Archive</source>
        <translation>アーカイブを保存</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>名前(&amp;N):</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>フォルダ(&amp;F):</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Use “%1”</source>
        <translation>“%1”を使用(&amp;U)</translation>
    </message>
    <message>
        <source>This folder cannot be found. Choose another one.</source>
        <translation>このフォルダが見つかりません。別のフォルダを選択してください。</translation>
    </message>
    <message>
        <source>You cannot save in this folder. Choose another one.</source>
        <translation>このフォルダには保存できません。別のフォルダを選択してください。</translation>
    </message>
    <message>
        <source>A name cannot contain a slash.</source>
        <translation>名前にスラッシュは使えません。</translation>
    </message>
    <message>
        <source>This cannot be a name.</source>
        <translation>この名前は使えません。</translation>
    </message>
    <message>
        <source>This name is too long.</source>
        <translation>名前が長すぎます。</translation>
    </message>
    <message>
        <source>There is a folder named “%1”.</source>
        <translation>“%1”という名前のフォルダがあります。</translation>
    </message>
    <message>
        <source>“%1” exists and will be replaced (%2, %3).</source>
        <translation>“%1”は既に存在し、置き換えられます（%2、%3）。</translation>
    </message>
    <message>
        <source>Names that begin with a dot are hidden.</source>
        <translation>ピリオドで始まる名前は隠しファイルになります。</translation>
    </message>
    <message>
        <source>Some systems refuse names with “%1”.</source>
        <translation>“%1”を含む名前を使えないシステムがあります。</translation>
    </message>
    <message>
        <source>Windows refuses this name.</source>
        <translation>Windowsではこの名前を使えません。</translation>
    </message>
    <message>
        <source>This name begins or ends with a space.</source>
        <translation>名前の先頭または末尾に空白があります。</translation>
    </message>
</context>
<context>
    <name>UpdateSheet</name>
    <message>
        <source>Software Update</source>
        <translation>ソフトウェアアップデート</translation>
    </message>
    <message>
        <source>An important update of %1 is available.</source>
        <translation>%1の重要なアップデートがあります。</translation>
    </message>
    <message>
        <source>A new version of %1 is available.</source>
        <translation>%1の新しいバージョンがあります。</translation>
    </message>
    <message>
        <source>%1 %2 can be downloaded; you have %3.</source>
        <translation>%1 %2をダウンロードできます。お使いのバージョンは%3です。</translation>
    </message>
    <message>
        <source>What is new</source>
        <translation>新機能</translation>
    </message>
    <message>
        <source>&amp;Not Now</source>
        <translation>今はしない(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Open Download Page</source>
        <translation>ダウンロードページを開く(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;What Is New</source>
        <translation>新機能(&amp;W)</translation>
    </message>
</context>
</TS>
