-- What a ledger holds when it is new; its indexes come with its format (format.cpp). docs/ledger.md tells what the
-- tables are for.
--
-- Text columns compare without regard to ASCII case, so that codes meet however they were typed. No key is unique:
-- the forms look a code up before they insert it, and a row that two sessions inserted at the same moment is theirs to
-- see, not a failure half-way in a document. Columns that a form may fill with a text or a number have no type, so that
-- a number stays one and is not shown as "5.0".

-- Partners: suppliers, consignees
create table TA1 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F6 text collate nocase, F7 text collate nocase);
create table TA2 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F6 text collate nocase, F7 text collate nocase);

-- Categories of goods
create table TA3 (F1 text collate nocase, F2 text collate nocase);

-- Goods with their live stock (F8) and cost (F7)
create table TA4 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F6 text collate nocase, F7 real, F71 real, F8 real, F9 text collate nocase,
    F11 text collate nocase, V1 real, V2 real, V3 real, V4 real, V5 real);
create table NTA4 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F6 text collate nocase, F7 real, F71 real, F8 real, F9 text collate nocase,
    F11 text collate nocase, V1 real, V2 real, V3 real, V4 real, V5 real);

-- Movement documents: headers and lines
create table TB1 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F5 text collate nocase,
    F6 text collate nocase, F9 real, F10 text collate nocase, H8 text collate nocase);
create table TB3 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F5 text collate nocase,
    F6 text collate nocase, F9 real, F10 text collate nocase, H8 text collate nocase);
create table TD1 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F5 text collate nocase,
    F6 text collate nocase, F9 real, F10 text collate nocase, H8 text collate nocase);
create table TD3 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F5 text collate nocase,
    F6 text collate nocase, F9 real, F10 text collate nocase, H8 text collate nocase);

create table TB11 (F0 text collate nocase, F1 text collate nocase, F6 real, F7 real, F8 text collate nocase,
    H6 real, H7 real, H8 text collate nocase);
create table TB31 (F0 text collate nocase, F1 text collate nocase, F6 real, F7 real, F8 text collate nocase,
    H6 real, H7 real, H8 text collate nocase);
create table TD11 (F0 text collate nocase, F1 text collate nocase, F6 real, F7 real, F8 text collate nocase,
    H6 real, H7 real, H8 text collate nocase);
create table TD31 (F0 text collate nocase, F1 text collate nocase, F6 real, F7 real, F8 text collate nocase,
    H6 real, H7 real, H8 text collate nocase);

-- Stock-takes
create table TC2 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F5 text collate nocase,
    F6 text collate nocase, F9 real, F10 text collate nocase);
create table TC21 (F0 text collate nocase, F1 text collate nocase, F5 real, F6 real, F7 real, F8 text collate nocase);

-- Operators, settings, identity
create table TE1 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F61 integer, F62 integer,
    F63 integer, F64 integer, F65 integer, F66 integer, F75 text collate nocase, pad text collate nocase);
create table sysinfo (ID integer, setval real, setstr text collate nocase);
create table reginfo (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F7 text collate nocase);
create table theVer (Versn text collate nocase);

-- Numbers given out
create table DanNo (DanF1 text collate nocase, Flg integer, Other text collate nocase);

-- Saved period reports
create table jxc (SortNo integer, Bdate text collate nocase, Edate text collate nocase, Hpbm text collate nocase,
    Gprice real, [As] real, Aj real, Bs real, Bj real, Cs real, Cj real, Ds real, Dj real, Es real, Ej real, Fs real,
    Fj real, Gs real, Gj real);

-- Flow ledger: scratch and last settings
create table TC15 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase, F4 text collate nocase,
    F5 text collate nocase, F6 text collate nocase, F7 text collate nocase, F8 text collate nocase,
    F9 text collate nocase, F10 real, F11 real, F12 real, F13 real, F14 real, F15 real, F16 real,
    F17 text collate nocase, F18 text collate nocase);
create table c15set (D1 text collate nocase, D2 text collate nocase, A3 text collate nocase, A4 text collate nocase);

-- Rows staged for print
create table PrTA1 (F1 collate nocase, F2 collate nocase, F3 collate nocase, F4 collate nocase, F5 collate nocase,
    F6 collate nocase, F7 collate nocase);
create table PRTc1 (F0 collate nocase, F1 collate nocase, F2 collate nocase, F3 collate nocase, F4 collate nocase,
    F5 collate nocase, F6 collate nocase, F7 collate nocase, F8 collate nocase);
create table PRTB2 (F0 collate nocase, F1 collate nocase, F2 collate nocase, F3 collate nocase, F4 collate nocase,
    F5 collate nocase, F6 collate nocase, F7 collate nocase, F8 collate nocase);
create table Plist (F0 collate nocase, F1 collate nocase, F2 collate nocase, F3 collate nocase, F4 collate nocase,
    F5 collate nocase, F6 collate nocase, F7 collate nocase, F8 collate nocase, F9 collate nocase,
    F10 collate nocase, F11 collate nocase, F12 collate nocase, F13 collate nocase, F14 collate nocase,
    F15 collate nocase, M1 collate nocase, M2 collate nocase, V1 real, V2 real, V3 real, V4 real, V5 real, V6 real,
    V7 real);

-- What a new ledger needs to be worked with
insert into TA1 (F1, F2) values ('001', '默认货品来源');
insert into TA2 (F1, F2) values ('001', '默认货品去向');
insert into TA3 (F1, F2) values ('001', '所有货品');
insert into TE1 (F1, F2, F3, F61, F62, F63, F64, F65, F66) values ('001', '管理员', '', 1, 1, 1, 1, 1, 1);
insert into sysinfo (ID, setval, setstr) values
    (0, 0, null), (1, 0, null), (2, 0, null), (3, 0, null), (4, 0, '0'), (5, 1, null), (6, 0, null), (7, 0, null),
    (8, 0, null), (9, 2, null), (10, 0, null);
insert into reginfo (F1, F2, F3, F4, F5, F7) values ('我的公司', '', '', '', '', '2004-1-1');
insert into theVer (Versn) values (''); -- a text here would mark a database that is none of ours
