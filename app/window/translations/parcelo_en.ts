<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- The string table: texts that the program knows by a key. All other English stands in the sources. -->
<TS version="2.1" language="en">
<context>
    <name>Localizable</name>
    <message><source>Completed</source><translation>Completed</translation></message>
    <message><source>Cancelled</source><translation>Cancelled</translation></message>
    <message><source>Okay</source><translation>OK</translation></message>
    <message><source>TYPE_PC</source><translation>Opens on every computer. Permissions, times and links are kept.</translation></message>
    <message><source>TYPE_MAC</source><translation>Also keeps resource forks and extended attributes, in a folder of their own.</translation></message>
</context>
</TS>
