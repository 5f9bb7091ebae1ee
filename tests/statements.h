#pragma once

/// The statements of the system as its forms build them, with sample values: what the store must take.
// clang-format off
inline constexpr const char16_t* systemStatements[] = {
    // Start, login and session
    u"select Versn from theVer",
    u"select top 1 TA4.F1 from TA4  where TA4.F8>TA4.V2 and TA4.V2<>0 ",
    u"select top 1 TA4.F1 from TA4  where TA4.F8<TA4.V1 ",
    u"SELECT F3 FROM TE1 WHERE F1='001'",
    u"select F1+'.'+F2 as userN from TE1 order by F1",
    u"select F2 from TE1 where F1='001'",
    u"select F75 from TE1 where F1='001'",
    u"select F61,F62,F63,F64,F65,F66 FROM TE1 WHERE F1='002'",
    u"select F1,F3,F4 from reginfo",
    // Shared procedures
    u"select top 1 Edate from jxc where SortNo>0 order by SortNo desc ",
    u"select F7 from reginfo",
    u"select top 1 F1 from TB1 where F1 like 'RK0411?????" u"?' order by F1 desc",
    u"select F1 from TC2 where F1 like 'PD0411??0001'",
    u"select DanF1 from DanNo where DanF1='RK0411180001'",
    u"insert into DanNo (DanF1,Flg,Other) values ('RK0411180001',0,'管理员')",
    u"delete from DanNo where DanF1='RK0411180001'",
    u"select F2 from Ta1 where F1='001'",
    u"select F2 from Ta2 where F1='001'",
    u"select ID,setval,Setstr from sysinfo order by ID",
    // Document lists and lines
    u"select TB1.F1,TB1.F2,TA1.F2 AS LB,TB1.F5,TB1.F6,TB1.F9,TB1.F10,TB1.F3 from TB1,TA1 WHERE TB1.F3=TA1.F1 and "
    u"(TB1.F6 is Null or TB1.F6='')  order by TB1.H8 desc ",
    u"select TB3.F1,TB3.F2,TA1.F2 AS LB,TB3.F5,TB3.F6,TB3.F9,TB3.F10,TB3.F3 from TB3,TA1 WHERE TB3.F3=TA1.F1 and "
    u"(TB3.F6 is Null or TB3.F6='')  order by TB3.H8 desc ",
    u"select TD1.F1,TD1.F2,TA2.F2 AS LB,TD1.F5,TD1.F6,TD1.F9,TD1.F10,TD1.F3 from TD1,TA2 WHERE TD1.F3=TA2.F1 and "
    u"(TD1.F6='' or TD1.F6 is Null)  order by TD1.H8 desc ",
    u"select TD3.F1,TD3.F2,TA2.F2 AS LB,TD3.F5,TD3.F6,TD3.F9,TD3.F10,TD3.F3 from TD3,TA2 WHERE TD3.F3=TA2.F1 and "
    u"(TD3.F6 is Null OR TD3.F6='')  order by TD3.H8 desc ",
    u"select TC2.F1,TC2.F2,TC2.F3 ,TC2.F5,TC2.F6,TC2.F9,TC2.F10,TC2.F3 from TC2 WHERE  TC2.F6 is Null order by "
    u"TC2.F1",
    u"select TB11.F1,TA4.F2+'/'+TA4.F5 AS MC,TA4.F4,TB11.F6,TB11.F7,TB11.F6*TB11.F7 AS JE,TB11.F8 FROM TB11,TA4 "
    u"WHERE TB11.F1=TA4.F1 AND TB11.F0='RK0411180001' ORDER BY TB11.F1",
    u"select TB31.F1,TA4.F2+'/'+TA4.F5 AS MC,TA4.F4,TB31.F6,TB31.F7,TB31.F6*TB31.F7 AS JE,TB31.F8 FROM TB31,TA4 "
    u"WHERE TB31.F1=TA4.F1 AND TB31.F0='RK0411180001' ORDER BY TB31.F1",
    u"select TD11.F1,TA4.F2+'/'+TA4.F5 AS MC,TA4.F4,TD11.F6,TD11.F7,TD11.F6*TD11.F7 AS JE,TD11.F8 FROM TD11,TA4 "
    u"WHERE TD11.F1=TA4.F1 AND TD11.F0='RK0411180001' ORDER BY TD11.F1",
    u"select TD31.F1,TA4.F2+'/'+TA4.F5 AS MC,TA4.F4,TD31.F6,TD31.F7,TD31.F6*TD31.F7 AS JE,TD31.F8 FROM TD31,TA4 "
    u"WHERE TD31.F1=TA4.F1 AND TD31.F0='RK0411180001' ORDER BY TD31.F1",
    u"select TC21.F1,TA4.F2+'/'+TA4.F5 AS MC,TC21.F5,TC21.F6,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS JE,TC21.F8 FROM "
    u"TC21,TA4 WHERE TC21.F1=TA4.F1 AND TC21.F0='PD0411180001' ORDER BY TC21.F1",
    u"select * from TA1 order by F1",
    u"select TB1.F1,TB1.F2,TA1.F2 AS LB,TB1.F5,TB1.F6,TB1.F9,TB1.F10,TB1.F3 from TB1 left join TA1 on "
    u"TB1.F3=TA1.F1   Where datediff('d','2004-11-1',TB1.F2 )>=0  And TB1.F3 like '*00*'   AND Not TB1.F9>=100 Or "
    u"TB1.F5   ='管理员'  ",
    u"select TC2.F1,TC2.F2,TC2.F3 AS PDR ,TC2.F5,TC2.F6,TC2.F9,TC2.F10,TC2.F3 from TC2    Where TC2.F1 like "
    u"'*PD*'  ",
    // Document entry
    u"select F1,F2,F5 from TA4",
    u"select F1,F2,F5 from TA4 order by F1",
    u"select F1,F2 from TA2 order by F1",
    u"select F1,F2,F5,F4,F8 from TA4 where F1='A1'",
    u"select F1,F2 from TA1 where F1='001'",
    u"select F1,(F2+'/'+F5) AS MC,F4,2 as sl,F7 from TA4 where F1='A1'",
    u"select F1,(F2+'/'+F5) AS MC ,F4,F71 from TA4 where F1='A1'",
    u"select top 500 F1,F2,F5,F8,F4 from TA4 where F1 like 'A*'  order by F1",
    u"select F2 from TA3 where F1='001'",
    u"select F2 from TA4 where F1='A1'",
    u"insert into TA4 (F1,F2,F3,F4,F5,F6,F9,F11,F7,F71,F8) VALUES ('A9','螺丝','001','个','M8','','无图片','A9',1.5,2,0)",
    u"insert into TA2 (F1,F2) values ('CH9','CH9')",
    u"select F1 from TB1 where F1='RK0411180001'",
    u"delete from TB11 where F0='RK0411180001'",
    u"delete from TB1 WHERE F1='RK0411180001'",
    u"insert into TB1 (H8,F1,F2,F3,F5,F9,F10) VALUES ('2004-11-18 "
    u"9:05:03','RK0411180001','2004-11-18','001','管理员',25.5,'附注')",
    u"insert into TB11 (F0,F1,F6,F7,F8) VALUES ('RK0411180001','A1',-3,1E-06,'')",
    u"select F1 from TB3 where F1='RK0411180001'",
    u"delete from TB31 where F0='RK0411180001'",
    u"delete from TB3 WHERE F1='RK0411180001'",
    u"insert into TB3 (H8,F1,F2,F3,F5,F9,F10) VALUES ('2004-11-18 "
    u"9:05:03','RK0411180001','2004-11-18','001','管理员',25.5,'附注')",
    u"insert into TB31 (F0,F1,F6,F7,F8) VALUES ('RK0411180001','A1',-3,1E-06,'')",
    u"select F1 from TD1 where F1='RK0411180001'",
    u"delete from TD11 where F0='RK0411180001'",
    u"delete from TD1 WHERE F1='RK0411180001'",
    u"insert into TD1 (H8,F1,F2,F3,F5,F9,F10) VALUES ('2004-11-18 "
    u"9:05:03','RK0411180001','2004-11-18','001','管理员',25.5,'附注')",
    u"insert into TD11 (F0,F1,F6,F7,F8) VALUES ('RK0411180001','A1',-3,1E-06,'')",
    u"select F1 from TD3 where F1='RK0411180001'",
    u"delete from TD31 where F0='RK0411180001'",
    u"delete from TD3 WHERE F1='RK0411180001'",
    u"insert into TD3 (H8,F1,F2,F3,F5,F9,F10) VALUES ('2004-11-18 "
    u"9:05:03','RK0411180001','2004-11-18','001','管理员',25.5,'附注')",
    u"insert into TD31 (F0,F1,F6,F7,F8) VALUES ('RK0411180001','A1',-3,1E-06,'')",
    // Audit and un-audit
    u"update TB1 set F6='管理员',H8='2004-11-18 9:06:00' where F1='RK0411180001'",
    u"update TB11 set H6=12,H7=2.75,H8='2004-11-18 9:06:00' where TB11.F0='RK0411180001' AND TB11.F1='A1'",
    u"update TB3 set F6='管理员',H8='2004-11-18 9:06:00' where F1='RK0411180001'",
    u"update TB31 set H6=12,H7=2.75,H8='2004-11-18 9:06:00' where TB31.F0='RK0411180001' AND TB31.F1='A1'",
    u"update TD1 set F6='管理员',H8='2004-11-18 9:06:00' where F1='RK0411180001'",
    u"update TD11 set H6=12,H7=2.75,H8='2004-11-18 9:06:00' where TD11.F0='RK0411180001' AND TD11.F1='A1'",
    u"update TD3 set F6='管理员',H8='2004-11-18 9:06:00' where F1='RK0411180001'",
    u"update TD31 set H6=12,H7=2.75,H8='2004-11-18 9:06:00' where TD31.F0='RK0411180001' AND TD31.F1='A1'",
    u"update TB11 set H6=-0.5,H7=2.75,H8='00-00-00' where TB11.F0='RK0411180001' AND TB11.F1='A1'",
    u"update TB1 set F6='',H8='2004-11-18 9:07:00' where F1='RK0411180001'",
    // Stock sufficiency
    u"select F8 FROM TA4 WHERE F1='A1'",
    u"select SUM (TD11.F6) AS SLSL from TD11 left join TD1 on TD1.F1=TD11.F0 WHERE TD1.F6 IS NULL and "
    u"TD11.F0<>'CK0411180001' AND TD11.F1='A1' GROUP BY TD11.F1",
    u"select SUM (TB31.F6) AS SLSL from TB31 left join TB3 on TB3.F1=TB31.F0 WHERE TB3.F6 IS NULL and "
    u"TB31.F0<>'CK0411180001' AND TB31.F1='A1' GROUP BY TB31.F1",
    // Document printing
    u"delete from Plist",
    u"Insert into Plist (F0,F1,F6,F7,F8,F9,V1,V2) VALUES('00001','A1','2','1.50','3.00','',2,1.5)",
    u"Insert into Plist (F0,F1,F2,F3,F4,F5,F6,F7,F8) VALUES('00001','A1','螺丝','M8','个','2','1.50','3.00',' ')",
    u"select F5 from TA4 where F1='A1'",
    // Stock-take
    u"select F1,(F2+'/'+F5) AS MC,F8,5 as sl,F7 from TA4 where F1='A1'",
    u"select F1,(F2+'/'+F5) AS MC,F8,F7 from TA4 where F1='A1'",
    u"insert into TC2 (F1,F2,F3,F5,F9,F10) VALUES ('PD0411180001','2004-11-18','张三','管理员',-3,'')",
    u"insert into TC21 (F0,F1,F5,F6,F7,F8) VALUES ('PD0411180001','A1',10,7,2.75,'')",
    u"update TA4 set F8=F8+-3 where F1='A1'",
    u"update TC2 set F6='管理员' where F1='PD0411180001'",
    // Partners, categories and goods
    u"select * from ta1 order by F1",
    u"select * from TA2 order by F1",
    u"select * from TA3 order by F1",
    u"select F3 from TB1 where F3='001'",
    u"select F3 from TD3 where F3='001'",
    u"select F3 from TA4 where F3='001'",
    u"select F2 from TA1 where F1='001'",
    u"delete from TA1 where F1='009'",
    u"insert into TA1 (F1,F2,F3,F4,F5,F6,F7) VALUES ('009','上海五金','南京路','','','','O''Neil')",
    u"insert into TA3 (F1,F2) VALUES ('009','五金')",
    u"select F1 from TA1 WHERE F1<>'009'",
    u"Select TA1.* from TA1  Where TA1.F2 like '*上海*'  ",
    u"delete from PrTA1",
    u"Insert into PrTA1 (F1,F2,F3,F4,F5,F6,F7) VALUES('001','a','b','c','d','e','f')",
    u"select TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F7,TA4.F6,TA4.F3,TA4.F71 from TA4,TA3 WHERE "
    u"TA4.F3=TA3.F1 order by TA4.F1",
    u"select F4 from TA4 where F4<>'' group by F4 order by F4",
    u"select TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F7,TA4.F6,TA4.F3,TA4.F71 from TA4 left join TA3 on "
    u"TA4.F3=TA3.F1   Where TA4.F7>5 And TA4.F5   ='M8'  ",
    u"select F8,V3,V4 from TA4 where F1='A1'",
    u"select F9 from TA4 where F1='A1'",
    u"select V1 from TA4 where F1='A1'",
    u"insert into TA4 (F1,F2,F3,F4,F5,F7,F6,F71,F11,F9,F8) VALUES "
    u"('A8','螺母','001','个','M8',0.5,'',1,'3001A8','无图片',100)",
    u"update TA4 set V1=1,V2=0,V3=100,V4=0.5 where F1='A8'",
    u"update TA4 set V3=100,V4=0.5 where F1='A8'",
    u"select hpbm from jxc where hpbm='A1'",
    u"select F1 from TB11 where F1='A1'",
    u"delete from TA4 WHERE F1='A8'",
    // Goods from a workbook
    u"select F1,F2 from TA3",
    u"select F1,F2,F3,F4,F5,F6,F7,F71,F8,V1,V2,V3,V4 from TA4 where F1='a1'",
    u"update TA4 set F1='A1',F2='螺栓',F3='001',F4=' ',F6='  宁波',F7=2.5,F8=100,V3=100,V4=2.5 where F1='a1'",
    u"insert into TA4 (F1,F3,F4,F5,F7,F71,F8,V3,V4) values ('A1','001',' ',' ',0,0,0,0,0)",
    u"select top 1 * from TA3 ",
    u"select * from TA4 where F1='A1'",
    u"select F1 from TA3 where F2='五金'",
    u"select F1 from TA3 where F1='009'",
    u"insert into TA3 (F1,F2) values('009','五金')",
    // Stock overview and alarms
    u"select top 1800 TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F8,TA4.F71,TA4.F71*TA4.F8 AS JE from TA4 left "
    u"join TA3 on TA4.F3=TA3.F1 where TA4.F8<>0 order by TA4.F1",
    u"select top 1000 TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F8,TA4.F71,TA4.F71*TA4.F8 AS JE from TA4 left "
    u"join TA3 on TA4.F3=TA3.F1 where TA4.F8<TA4.V1 order by TA4.F3",
    u"select top 1000 TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F8,TA4.F71,TA4.F71*TA4.F8 AS JE from TA4 left "
    u"join TA3 on TA4.F3=TA3.F1 where TA4.F8>TA4.V2 and TA4.V2<>0 order by TA4.F8",
    u"select TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F8,TA4.F7,TA4.F7*TA4.F8 AS JE from TA4 left join TA3 on "
    u"TA4.F3=TA3.F1             Where (TA4.F3   ='001'   Or Ta4.F7*Ta4.F8>=100)order by TA4.F7*TA4.F8",
    u"delete from PRTc1",
    u"Insert into PRTc1 (F0,F1,F2,F3,F4,F5,F6,F7,F8) VALUES('1','A1','螺丝','所有货品','个','M8',10,0,0)",
    // Document statistics
    u"select TB1.F1,TB1.F2,TB1.F3,TA1.F2 AS "
    u"LB,TB1.F10,TB11.F1,TA4.F2,TA4.F5,TA4.F3,TA3.F2,TA4.F4,TB11.F6,TB11.F7,TB11.F6*TB11.F7 AS je,TB11.F8 from "
    u"(TB1 left join TA1 on TB1.F3=TA1.F1) left join (TB11 left Join ( TA4 left join TA3 on TA4.F3=TA3.F1) on "
    u"TB11.F1=TA4.F1) on TB11.F0=TB1.F1   Where datediff('d','2004-11-18',TB1.F2 ) = 0  and (TB1.F6 is not Null) "
    u"and TB1.F6<>''order by TB1.F2",
    u"select TB3.F1,TB3.F2,TB3.F3,TA1.F2 AS "
    u"LB,TB3.F10,TB31.F1,TA4.F2,TA4.F5,TA4.F3,TA3.F2,TA4.F4,TB31.F6,TB31.F7,TB31.F6*TB31.F7 AS je,TB31.F8 from "
    u"(TB3 left join TA1 on TB3.F3=TA1.F1) left join (TB31 left Join ( TA4 left join TA3 on TA4.F3=TA3.F1) on "
    u"TB31.F1=TA4.F1) on TB31.F0=TB3.F1   Where datediff('d','2004-11-18',TB3.F2 ) = 0  and (TB3.F6 is not Null) "
    u"and TB3.F6<>''order by TB3.F2",
    u"select TD1.F1,TD1.F2,TD1.F3,TA2.F2 AS "
    u"LB,TD1.F10,TD11.F1,TA4.F2,TA4.F5,TA4.F3,TA3.F2,TA4.F4,TD11.F6,TD11.F7,TD11.F6*TD11.F7 AS je,TD11.F8 from "
    u"(TD1 left join TA2 on TD1.F3=TA2.F1) left join (TD11 left Join ( TA4 left join TA3 on TA4.F3=TA3.F1) on "
    u"TD11.F1=TA4.F1) on TD11.F0=TD1.F1   Where datediff('d','2004-11-18',TD1.F2 ) = 0  and (TD1.F6 is not Null) "
    u"and TD1.F6<>''order by TD1.F2",
    u"select TD3.F1,TD3.F2,TD3.F3,TA2.F2 AS "
    u"LB,TD3.F10,TD31.F1,TA4.F2,TA4.F5,TA4.F3,TA3.F2,TA4.F4,TD31.F6,TD31.F7,TD31.F6*TD31.F7 AS je,TD31.F8 from "
    u"(TD3 left join TA2 on TD3.F3=TA2.F1) left join (TD31 left Join ( TA4 left join TA3 on TA4.F3=TA3.F1) on "
    u"TD31.F1=TA4.F1) on TD31.F0=TD3.F1   Where datediff('d','2004-11-18',TD3.F2 ) = 0  and (TD3.F6 is not Null) "
    u"and TD3.F6<>''order by TD3.F2",
    u"Insert into Plist (F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,V1,V2) "
    u"VALUES('00001','a','b','c','d','e','f','g','h','i','j','k','l','m','n','o',2,3.5)",
    // Stock-take statistics
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by TC2.F2",
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by TC2.F3",
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by TC21.F1",
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by "
    u"TC21.F6-TC21.F5",
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by TC21.F7",
    u"select TC2.F1,TC2.F2,TC2.F3 AS LB,TC21.F1,TA4.F2,TA4.F5,TA4.F4,TC21.F6-TC21.F5 AS "
    u"YK,TC21.F7,(TC21.F6-TC21.F5)*TC21.F7 AS je from TC2 left join (TC21 left Join TA4 on TC21.F1=TA4.F1) on "
    u"TC21.F0=TC2.F1   Where datediff('d','2004-11-18',TC2.F2 ) = 0  and (TC2.F6 is not Null)order by "
    u"(TC21.F6-TC21.F5)*TC21.F7",
    u"delete from PRTB2",
    u"Insert into PRTB2 (F0,F1,F2,F3,F4,F5,F6,F7,F8) VALUES('1','a','b','c','d/e/f','g',1,2,3)",
    // Flow ledger
    u"delete from TC15",
    u"DELETE FROM C15SET",
    u"INSERT INTO c15set (D1,D2,A3,A4) values ('2004-11-1','2004-11-18','所有类别','所有货品')",
    u"select * from c15set",
    u"select * from TA3",
    u"select F1,F2 from TA1",
    u"select F1,F2 from TA2",
    u"select TB1.F1,TB1.F2,TA1.F2 AS "
    u"BuMen,TB1.F10,TA3.F2,TB11.F1,TA4.F2,TA4.F5,TA4.F4,TB11.F7,TB11.F6,TB11.F6*TB11.F7 AS je,0 as CS,0 as "
    u"CJ,TB11.H6,TB11.H6*TB11.H7,TB11.F8,TB1.H8 from (TB1 left join TA1 on TB1.F3=TA1.F1) left join (TB11 left "
    u"Join (TA4 left join TA3 on TA4.F3=TA3.F1) on TB11.F1=TA4.F1) on TB11.F0=TB1.F1   Where "
    u"datediff('d','2004-11-1',TB1.F2 ) >= 0 and  datediff('d','2004-11-18',TB1.F2 ) <= 0  and TA4.F3='001'  and "
    u"TB11.F1 like 'A*' and TB1.F3 like '00?' ",
    u"select TB3.F1,TB3.F2,TA1.F2 AS BuMen,TB3.F10,TA3.F2,TB31.F1,TA4.F2,TA4.F5,TA4.F4,TB31.F7,0 as CS,0 as "
    u"CJ,TB31.F6,TB31.F6*TB31.F7 AS je,TB31.H6,TB31.H6*TB31.H7,TB31.F8,TB3.H8 from (TB3 left join TA1 on "
    u"TB3.F3=TA1.F1) left join (TB31 left Join (TA4 left join TA3 on TA4.F3=TA3.F1) on TB31.F1=TA4.F1) on "
    u"TB31.F0=TB3.F1   Where datediff('d','2004-11-1',TB3.F2 ) >= 0 and  datediff('d','2004-11-18',TB3.F2 ) <= 0  "
    u"and TA4.F3='001'  and TB31.F1 like 'A*' and TB3.F3 like '00?' ",
    u"select TD1.F1,TD1.F2,TA2.F2 AS BuMen,TD1.F10,TA3.F2,TD11.F1,TA4.F2,TA4.F5,TA4.F4,TD11.F7,0 as CS,0 as "
    u"CJ,TD11.F6,TD11.F6*TD11.F7 AS je,TD11.H6,TD11.H6*TD11.H7,TD11.F8,TD1.H8 from (TD1 left join TA2 on "
    u"TD1.F3=TA2.F1) left join (TD11 left Join (TA4 left join TA3 on TA4.F3=TA3.F1) on TD11.F1=TA4.F1) on "
    u"TD11.F0=TD1.F1   Where datediff('d','2004-11-1',TD1.F2 ) >= 0 and  datediff('d','2004-11-18',TD1.F2 ) <= 0  "
    u"and TA4.F3='001'  and TD11.F1 like 'A*' and TD1.F3 like '00?' ",
    u"select TD3.F1,TD3.F2,TA2.F2 AS "
    u"BuMen,TD3.F10,TA3.F2,TD31.F1,TA4.F2,TA4.F5,TA4.F4,TD31.F7,TD31.F6,TD31.F6*TD31.F7 AS je,0 as CS,0 as "
    u"CJ,TD31.H6,TD31.H6*TD31.H7,TD31.F8,TD3.H8 from (TD3 left join TA2 on TD3.F3=TA2.F1) left join (TD31 left "
    u"Join (TA4 left join TA3 on TA4.F3=TA3.F1) on TD31.F1=TA4.F1) on TD31.F0=TD3.F1   Where "
    u"datediff('d','2004-11-1',TD3.F2 ) >= 0 and  datediff('d','2004-11-18',TD3.F2 ) <= 0  and TA4.F3='001'  and "
    u"TD31.F1 like 'A*' and TD3.F3 like '00?' ",
    u"INSERT INTO TC15 (F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,F16,F17,F18) values "
    u"('RK0411180001','2004-11-18','a','b','c','A1','d','e','f',2.75,2,5.5,0,0,12,33,'','00-01-01')",
    u"INSERT INTO TC15 (F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F1 4,F15,F16,F17,F18) values "
    u"('RK0411180001','2004-11-18','a','b','c','A1','d','e','f',2.75,2,5.5,0,0,12,33,'','00-01-01')",
    u"select F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,F16,F17 FROM TC15  order by F2",
    u"select F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,F16,F17 from TC15 order by F14 desc",
    u"select F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,F16,F17 FROM TC15  order by F18",
    u"delete from Plist ",
    u"INSERT INTO Plist (F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,M1,M2,V1,V2,V3,V4,V5,V6,V7) values "
    u"('0000001','a','b','c','d','e','f','g','h','i','j','k','l','m','n','o','p','q',1,2,3,4,5,6,7.5)",
    // Quantity period report
    u"select count(*) from TB1 where datediff('d','2004-11-1',TB1.F2 ) >= 0  And datediff('d','2004-11-18',TB1.F2 ) "
    u"<= 0  ",
    u" SELECT TB11.F1,SUM(TB11.F6) AS SSL FROM TB11 LEFT JOIN TB1 ON TB1.F1=TB11.F0 WHERE TB1.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-1',TB1.F2 ) >= 0  And datediff('d','2004-11-18',TB1.F2 ) <= 0   GROUP BY TB11.F1",
    u" SELECT TB11.F1,SUM(TB11.F6) AS SSL FROM TB11 LEFT JOIN TB1 ON TB1.F1=TB11.F0 WHERE TB1.F6 IS NOT NULL AND   0 "
    u"<= datediff('d','2004-11-1',TB1.F2 )  And 0 >= datediff('d','2004-11-18',TB1.F2 )  GROUP BY TB11.F1",
    u"select F1,(F2+'/'+F5) as pm,F7,F4,F8 from TA4 where  F3 is not null  and F1 like 'A*'  Order by F1",
    u"select F1,(F2+'/'+F5) as pm,F71,F4,F8 from TA4 where  F3 is not null  and F1 like 'A*'  Order by F8 desc",
    u"select F1,(F2+'/'+F5) as pm,F7,F4,F8 from TA4 where  F3='001'  Order by F5",
    u" SELECT SUM(TB11.F6) AS SSL FROM TB11 LEFT JOIN TB1 ON TB1.F1=TB11.F0 WHERE TB1.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-1',TB1.F2 ) >= 0  And datediff('d','2004-11-18',TB1.F2 ) <= 0   AND TB11.F1='A1' "
    u"GROUP BY TB11.F1",
    u" SELECT SUM(TB11.F6) AS SSL FROM TB11 LEFT JOIN TB1 ON TB1.F1=TB11.F0 WHERE TB1.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-18',TB1.F2 ) > 0   AND TB11.F1='A1' GROUP BY TB11.F1",
    u" SELECT SUM(TB31.F6) AS SSL FROM TB31 LEFT JOIN TB3 ON TB3.F1=TB31.F0 WHERE TB3.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-1',TB3.F2 ) >= 0  And datediff('d','2004-11-18',TB3.F2 ) <= 0   AND TB31.F1='A1' "
    u"GROUP BY TB31.F1",
    u" SELECT SUM(TB31.F6) AS SSL FROM TB31 LEFT JOIN TB3 ON TB3.F1=TB31.F0 WHERE TB3.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-18',TB3.F2 ) > 0   AND TB31.F1='A1' GROUP BY TB31.F1",
    u" SELECT SUM(TD11.F6) AS SSL FROM TD11 LEFT JOIN TD1 ON TD1.F1=TD11.F0 WHERE TD1.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-1',TD1.F2 ) >= 0  And datediff('d','2004-11-18',TD1.F2 ) <= 0   AND TD11.F1='A1' "
    u"GROUP BY TD11.F1",
    u" SELECT SUM(TD11.F6) AS SSL FROM TD11 LEFT JOIN TD1 ON TD1.F1=TD11.F0 WHERE TD1.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-18',TD1.F2 ) > 0   AND TD11.F1='A1' GROUP BY TD11.F1",
    u" SELECT SUM(TD31.F6) AS SSL FROM TD31 LEFT JOIN TD3 ON TD3.F1=TD31.F0 WHERE TD3.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-1',TD3.F2 ) >= 0  And datediff('d','2004-11-18',TD3.F2 ) <= 0   AND TD31.F1='A1' "
    u"GROUP BY TD31.F1",
    u" SELECT SUM(TD31.F6) AS SSL FROM TD31 LEFT JOIN TD3 ON TD3.F1=TD31.F0 WHERE TD3.F6 IS NOT NULL AND   "
    u"datediff('d','2004-11-18',TD3.F2 ) > 0   AND TD31.F1='A1' GROUP BY TD31.F1",
    u"delete from plist",
    u"insert into plist (F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10) VALUES "
    u"('0001','a','b','c','d','e','f','g','h','i','j')",
    // Comprehensive period report
    u"select sortNo,Bdate,Edate from jxc  where SortNo<>0 group by SortNo,Bdate,Edate order by SortNo desc",
    u"delete from jxc where SortNo=0",
    u"select F1,(F2+'/'+F5+'/'+F4) as pm,F7,F8,V3,V4 from TA4 order by F1",
    u"select top 1 SortNo from jxc where SortNo>0 order by SortNo desc ",
    u"select Hpbm,Bdate,Gs,Gj,Ds,Dj,Fs,Fj from jxc where SortNo=3",
    u"select top 1 Bdate,Gs,Gj,Ds,Dj,Fs,Fj from jxc where hpbm='A1' and SortNo>0 order by SortNo desc ",
    u"select count(*) from TB1",
    u"select count(*) from TB1 where   datediff('d','2004-11-1',TB1.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TB1.F2 ) <= 0  ",
    u"select F1 from TB1 where TB1.F6 IS NOT NULL and TB1.F6<>'' AND   datediff('d','2004-11-1',TB1.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TB1.F2 ) <= 0  ",
    u"select TB11.F1,TB11.F0,TB11.F6,TB11.F7 from TB11 order by TB11.F1,TB11.F0,TB11.F6,TB11.F7",
    u"select TB11.F1,TB11.F0,TB11.F6,TB11.F7 from TB11 left join TB1 on TB1.F1=TB11.F0 where TB1.F6 IS NOT NULL and "
    u"TB1.F6<>'' AND   datediff('d','2004-11-1',TB1.F2 ) >= 0  And datediff('d','2004-11-18',TB1.F2 ) <= 0   order by "
    u"TB11.F1,TB11.F0,TB11.F6,TB11.F7",
    u"SELECT TC21.F1 FROM TC21 LEFT JOIN TC2 ON TC2.F1=TC21.F0 WHERE TC2.F6 IS NOT NULL and TC2.F6<>'' AND   "
    u"datediff('d','2004-11-1',TC2.F2 ) >= 0  And datediff('d','2004-11-18',TC2.F2 ) <= 0   AND TC21.F1 like "
    u"'* AND (TC21.F6-TC21.F5)>0' GROUP BY TC21.F1",
    u" SELECT Sum(TB11.F6) AS SSL,Sum(TB11.F6*TB11.F7) as JE FROM TB11 LEFT JOIN TB1 ON TB1.F1=TB11.F0 WHERE "
    u"TB1.F6 IS NOT NULL and TB1.F6<>'' AND   datediff('d','2004-11-1',TB1.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TB1.F2 ) <= 0   AND TB11.F1='A1' GROUP BY TB11.F1",
    u" SELECT Sum(TB31.F6) AS SSL,Sum(TB31.F6*TB31.F7) as JE FROM TB31 LEFT JOIN TB3 ON TB3.F1=TB31.F0 WHERE "
    u"TB3.F6 IS NOT NULL and TB3.F6<>'' AND   datediff('d','2004-11-1',TB3.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TB3.F2 ) <= 0   AND TB31.F1='A1' GROUP BY TB31.F1",
    u" SELECT Sum(TD11.F6) AS SSL,Sum(TD11.F6*TD11.F7) as JE FROM TD11 LEFT JOIN TD1 ON TD1.F1=TD11.F0 WHERE "
    u"TD1.F6 IS NOT NULL and TD1.F6<>'' AND   datediff('d','2004-11-1',TD1.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TD1.F2 ) <= 0   AND TD11.F1='A1' GROUP BY TD11.F1",
    u" SELECT Sum(TD31.F6) AS SSL,Sum(TD31.F6*TD31.F7) as JE FROM TD31 LEFT JOIN TD3 ON TD3.F1=TD31.F0 WHERE "
    u"TD3.F6 IS NOT NULL and TD3.F6<>'' AND   datediff('d','2004-11-1',TD3.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TD3.F2 ) <= 0   AND TD31.F1='A1' GROUP BY TD31.F1",
    u" SELECT Sum(TC21.F6-TC21.F5) AS SSL,Sum(TC21.F6*TC21.F7-TC21.F5*TC21.F7) as JE FROM TC21 LEFT JOIN TC2 ON "
    u"TC2.F1=TC21.F0 WHERE TC2.F6 IS NOT NULL and TC2.F6<>'' AND   datediff('d','2004-11-1',TC2.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TC2.F2 ) <= 0   AND TC21.F1='A1 AND (TC21.F6-TC21.F5)>0' GROUP BY TC21.F1",
    u" SELECT Sum(TC21.F5-TC21.F6) AS SSL,Sum(TC21.F5*TC21.F7-TC21.F6*TC21.F7) as JE FROM TC21 LEFT JOIN TC2 ON "
    u"TC2.F1=TC21.F0 WHERE TC2.F6 IS NOT NULL and TC2.F6<>'' AND   datediff('d','2004-11-1',TC2.F2 ) >= 0  And "
    u"datediff('d','2004-11-18',TC2.F2 ) <= 0   AND TC21.F1='A1 AND (TC21.F5-TC21.F6)>0' GROUP BY TC21.F1",
    u"insert into jxc (SortNo,Bdate,Edate,Hpbm,Gprice,[As],Aj,Bs,Bj,Cs,Cj,Ds,Dj,Es,Ej,Fs,Fj,Gs,Gj) values "
    u"(0,'2004-11-1','2004-11-18','A1',2.75,1,2,3,4,5,6,7,8,9,10,11,12,-13,14.25)",
    u"select JXC.Hpbm,(TA4.F2+'/'+TA4.F5+'/'+TA4.F4) AS "
    u"MC,JXC.Gprice,[JXC.As],JXC.Aj,JXC.Bs,JXC.Bj,JXC.Cs,JXC.Cj,JXC.Ds,JXC.Dj,JXC.Es,JXC.Ej,JXC.Fs,JXC.Fj,JXC.Gs,"
    u"JXC.Gj,Edate from jxc left join Ta4 on TA4.F1=jxc.hpbm where jxc.SortNo=-1 And (TA4.F3   ='001'  ) order by "
    u"jxc.hpbm",
    u"select top 1 SortNo from jxc order by SortNo",
    u"select top 1 SortNo from jxc order by SortNo desc",
    u"update jxc set SortNo=3 where SortNo=0",
    u"delete * from jxc where SortNo=3",
    u"delete * from jxc where SortNo<0",
    u"update TA4 set F7=2.80 where F1='A1'",
    u"insert into Plist (F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13) VALUES "
    u"('00001','a','b','c','d','e','f','g','h','i','j','k','l','m')",
    u"select TA3.F1 AS LB from TA3 left join TA4 on TA3.F1=TA4.F3 where TA4.F1='A1'",
    // The card and the chart of a goods item, the chart of the stock, what must be bought
    u"select F1,F2,F5,F4,F3,F8,F7,F71,V1,V2,V3 from TA4 where F1='A1'",
    u"select TB1.F2,TB1.F1,TB1.F3,TB1.F6,TB1.F10,TB11.F6,0 as ZM,TB11.H8 from TB11 inner join TB1 on TB1.F1=TB11.F0 "
    u"where TB1.F6 IS NOT NULL and TB1.F6<>'' and TB11.F1='A1'",
    u"select TC2.F2,TC2.F1,TC2.F3,TC2.F6,TC2.F10,TC21.F6,TC21.F5,0 as SJ from TC21 inner join TC2 on TC2.F1=TC21.F0 "
    u"where TC2.F6 IS NOT NULL and TC2.F6<>'' and TC21.F1='A1'",
    u"select TA4.F3,TA3.F2 AS LB,SUM(TA4.F7*TA4.F8) AS JE,SUM(TA4.F8) AS SL,COUNT(*) AS ZS from TA4 left join TA3 on "
    u"TA4.F3=TA3.F1 where TA4.F8<>0 group by TA4.F3,TA3.F2",
    u"select TB11.F1,SUM(TB11.F6) AS SLSL from TB11 inner join TB1 on TB1.F1=TB11.F0 WHERE TB1.F6 IS NULL GROUP BY "
    u"TB11.F1",
    u"select F1,F3,F2 from TB1 where F6 IS NOT NULL and F6<>'' order by F2,H8",
    u"select F1,F0,F7 from TB11",
    // Operators and settings
    u"select * from TE1 order by F1",
    u"delete from TE1 where F1='002'",
    u"insert into TE1 (F1,F2,F61,F62,F63,F64,F65,F66) VALUES ('002','李四',1,1,0,0,1,0)",
    u"select pad from TE1 where F1='001'",
    u"update TE1 set F3='abc' WHERE F1='001'",
    u"update TE1 set pad='今天：盘点’' where F1='001'",
    u"update TE1 set F75='' where F1='001'",
    u"update sysinfo set setval=1 where ID=0",
    u"delete from sysinfo  where ID=3",
    u"insert into sysinfo (ID,setval) values (3,1) ",
    u"insert into sysinfo (ID,setval,setstr) values (4,1.25,'1.25') ",
    // Year-end and clearing
    u"update TA4 set V3=F8,V4=F7 ",
    u"update reginfo set F7='2005-1-1'",
    u"delete * from TB11",
    u"delete * from TB1",
    u"DELETE * FROM JXC",
    u"update jxc set SortNo=-SortNo where SortNo>0",
    u"select F1 from TA1",
    u"insert into TA1 (F1,F2) values ('001','默认货品来源')",
    u"UPDATE TA4 SET F8=0,V3=0,V4=0 ",
    u"delete from jxc",
    u"update REGINFO SET F7='2005-1-1'",
    u"delete from TB11 where TB11.F0 in (select TB1.F1 from TB1 where TB1.F3='009')",
    u"delete from TB1 where  TB1.F3='009'",
    u"delete from TB1 where TB1.F1 IN ( SELECT F0 FROM TB11 WHERE TB11.F1='A1')",
    u"delete from TB11 where TB11.F0 IN ( SELECT F0 FROM TB11 WHERE TB11.F1='A1')",
    u"delete from TB31 where TB31.F0 in (select TB3.F1 from TB3 where TB3.F3='009')",
    u"delete from TB3 where  TB3.F3='009'",
    u"delete from TB3 where TB3.F1 IN ( SELECT F0 FROM TB31 WHERE TB31.F1='A1')",
    u"delete from TB31 where TB31.F0 IN ( SELECT F0 FROM TB31 WHERE TB31.F1='A1')",
    u"delete from TD11 where TD11.F0 in (select TD1.F1 from TD1 where TD1.F3='009')",
    u"delete from TD1 where  TD1.F3='009'",
    u"delete from TD1 where TD1.F1 IN ( SELECT F0 FROM TD11 WHERE TD11.F1='A1')",
    u"delete from TD11 where TD11.F0 IN ( SELECT F0 FROM TD11 WHERE TD11.F1='A1')",
    u"delete from TD31 where TD31.F0 in (select TD3.F1 from TD3 where TD3.F3='009')",
    u"delete from TD3 where  TD3.F3='009'",
    u"delete from TD3 where TD3.F1 IN ( SELECT F0 FROM TD31 WHERE TD31.F1='A1')",
    u"delete from TD31 where TD31.F0 IN ( SELECT F0 FROM TD31 WHERE TD31.F1='A1')",
    u"delete from jxc where hpbm='A1'",
    u"delete from TB11 where TB11.F0 in (select F1 from TB1 where datediff('d','2004-11-18',F2)<0)",
    u"delete from TB1 where datediff('d','2004-11-18',F2)<0",
    u"delete from TB31 where TB31.F0 in (select F1 from TB3 where datediff('d','2004-11-18',F2)<0)",
    u"delete from TB3 where datediff('d','2004-11-18',F2)<0",
    u"delete from TD11 where TD11.F0 in (select F1 from TD1 where datediff('d','2004-11-18',F2)<0)",
    u"delete from TD1 where datediff('d','2004-11-18',F2)<0",
    u"delete from TD31 where TD31.F0 in (select F1 from TD3 where datediff('d','2004-11-18',F2)<0)",
    u"delete from TD3 where datediff('d','2004-11-18',F2)<0",
    u"delete from TC21 where TC21.F0 in (select F1 from TC2 where datediff('d','2004-11-18',F2)<0)",
    u"delete from TC2 where datediff('d','2004-11-18',F2)<0",
};
// clang-format on
