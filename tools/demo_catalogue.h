#pragma once

#include "platform/base/text.h"

#include <QList>
#include <QStringView>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

/// What the demonstration ledger trades: a small hardware shop with its goods, suppliers, customers and staff.
/// Every name, address and number is made up; the telephone numbers lie in a range that is kept free for that.
namespace demo {

struct Category
{
    QStringView code, name;
};

struct Partner
{
    QString code, name, address, telephone, fax, mail, contact;
};

struct Operator
{
    QStringView account, name;
    bool base, inbound, stock, outbound, cost, administration; ///< the rights F61 to F66
};

struct Goods
{
    QString code, name, category, unit, specification;
    double cost;             ///< money per piece, whole cents
    double minimum, maximum; ///< pieces
};

/// Goods of one name that differ by size only. Cost and safety stock run evenly, by factors, from the first size to the
/// last, so the sizes (two or more) stand in the order of their price.
struct Family
{
    QStringView category, name, unit, sizes; ///< sizes: parted by "|"
    double firstCost, lastCost;
    double firstMinimum, lastMinimum;
};

inline constexpr QStringView companyName = u"云州市和顺五金商行";
inline constexpr QStringView companyAddress = u"云州市北屏区五金城西路88号";
inline constexpr QStringView companyTelephone = u"010-55500100";

inline constexpr Category categories[] = {
    {u"DG", u"电动工具及附件"}, {u"DL", u"电料照明"},     {u"DQ", u"垫圈挡圈"}, {u"GJ", u"管件阀门"},
    {u"LB", u"劳保安防"},       {u"LD", u"螺钉"},         {u"LS", u"螺栓螺母"}, {u"MF", u"密封胶粘"},
    {u"MJ", u"磨具刃具"},       {u"PZ", u"膨胀螺栓铆钉"}, {u"SG", u"手动工具"}, {u"SJ", u"锁具铰链"},
};

/// The rights follow the program's own rule that who books goods in sees their cost.
inline constexpr Operator operators[] = {
    // account, name, 基础数据, 入库管理, 库存管理, 出库管理, 成本价格, 系统管理
    {u"101", u"王小敏", true, true, true, true, true, false},     // 仓管员
    {u"102", u"李建国", false, false, true, true, false, false},  // 开单员
    {u"103", u"赵丽华", true, true, true, false, true, false},    // 采购员
    {u"104", u"周文静", false, false, true, false, true, true},   // 会计
    {u"105", u"陈志远", false, false, false, true, false, false}, // 门市店员
};

// clang-format off
inline constexpr Family families[] = {
    // category, name, unit, sizes, cost first and last, safety stock first and last
    {u"DG", u"冲击钻",       u"台", u"13mm 550W|13mm 710W|16mm 850W", 148, 236, 5, 3},
    {u"DG", u"角磨机",       u"台", u"100mm 670W|125mm 900W|150mm 1200W", 126, 268, 5, 3},
    {u"DG", u"锂电起子机",   u"台", u"12V 单电|12V 双电|16V 双电|20V 双电", 138, 318, 6, 4},
    {u"DG", u"方柄电锤钻头", u"支", u"6×110|8×110|8×160|10×160|12×160|14×160|16×210", 2.6, 11.5, 60, 20},
    {u"DG", u"热熔器",       u"台", u"20-32 600W|20-63 1000W", 72, 118, 3, 2},
    {u"DL", u"铜芯塑料线",   u"卷", u"BV 1.5mm² 100m|BV 2.5mm² 100m|BV 4mm² 100m|BV 6mm² 100m", 96, 352, 30, 10},
    {u"DL", u"PVC电线管",    u"根", u"Φ16×3m|Φ20×3m|Φ25×3m|Φ32×3m", 3.2, 9.6, 200, 60},
    {u"DL", u"LED球泡灯",    u"只", u"E27 3W|E27 5W|E27 7W|E27 9W|E27 12W|E27 18W", 2.4, 9.8, 200, 50},
    {u"DL", u"小型断路器",   u"只", u"1P 16A|1P 32A|2P 32A|2P 63A|3P 63A", 6.5, 32, 60, 20},
    {u"DL", u"墙壁插座",     u"只", u"五孔 10A|三孔 16A|七孔 10A|五孔带开关 10A", 4.8, 9.9, 100, 40},
    {u"DL", u"电工胶带",     u"卷", u"18mm×10m|18mm×20m|20mm×20m", 1.2, 2.6, 300, 120},
    {u"DQ", u"平垫圈",       u"个", u"M4|M5|M6|M8|M10|M12|M16|M20", 0.02, 0.26, 3000, 500},
    {u"DQ", u"弹簧垫圈",     u"个", u"M4|M5|M6|M8|M10|M12|M16|M20", 0.02, 0.32, 3000, 500},
    {u"DQ", u"孔用挡圈",     u"个", u"Φ16|Φ20|Φ25|Φ30|Φ40|Φ50", 0.08, 0.65, 400, 100},
    {u"GJ", u"PPR直接",      u"个", u"DN20|DN25|DN32|DN40|DN50", 0.85, 5.4, 200, 40},
    {u"GJ", u"PPR90°弯头",   u"个", u"DN20|DN25|DN32|DN40|DN50", 1.1, 7.8, 200, 40},
    {u"GJ", u"PPR等径三通",  u"个", u"DN20|DN25|DN32|DN40|DN50", 1.4, 9.6, 150, 30},
    {u"GJ", u"黄铜球阀",     u"只", u"DN15|DN20|DN25|DN32|DN40|DN50", 12.5, 86, 60, 10},
    {u"GJ", u"不锈钢软管",   u"根", u"30cm|40cm|50cm|60cm|80cm|100cm", 5.2, 11.6, 80, 30},
    {u"LB", u"棉纱手套",     u"双", u"500g|600g|700g", 0.95, 1.45, 600, 300},
    {u"LB", u"丁腈浸胶手套", u"双", u"S码|M码|L码|XL码", 2.6, 3.2, 200, 100},
    {u"LB", u"安全帽",       u"顶", u"V型 白色|V型 红色|V型 黄色|V型 蓝色", 11.8, 11.8, 40, 40},
    {u"LB", u"劳保鞋",       u"双", u"39码|40码|41码|42码|43码|44码", 62, 62, 12, 8},
    {u"LB", u"防护眼镜",     u"副", u"透明|防雾", 4.5, 7.2, 60, 40},
    {u"LD", u"十字沉头自攻钉", u"盒", u"M3×12 500只|M3×16 500只|M3.5×20 500只|M4×25 500只|M4×35 500只|M5×50 200只", 6.2, 14.5, 60, 30},
    {u"LD", u"六角钻尾钉",   u"盒", u"M5.5×19 200只|M5.5×25 200只|M5.5×38 200只|M5.5×50 200只|M6.3×75 100只", 12.5, 24, 40, 20},
    {u"LD", u"干壁钉",       u"盒", u"M3.5×16 1000只|M3.5×25 1000只|M3.5×35 1000只|M3.5×50 500只", 11, 19.5, 60, 30},
    {u"LD", u"十字盘头机螺钉", u"个", u"M3×8|M3×12|M4×10|M4×16|M5×20|M6×25", 0.03, 0.16, 2000, 600},
    {u"LS", u"外六角螺栓",   u"个", u"M6×20|M6×30|M8×25|M8×40|M10×30|M10×50|M12×40|M12×60|M16×60|M16×80|M20×80", 0.11, 2.65, 1000, 120},
    {u"LS", u"内六角螺栓",   u"个", u"M4×12|M5×16|M6×20|M6×30|M8×20|M8×30|M10×30|M10×40|M12×50|M16×60", 0.09, 2.2, 1000, 150},
    {u"LS", u"六角螺母",     u"个", u"M4|M5|M6|M8|M10|M12|M16|M20", 0.03, 0.72, 2000, 300},
    {u"LS", u"尼龙防松螺母", u"个", u"M5|M6|M8|M10|M12|M16", 0.08, 0.68, 1000, 200},
    {u"LS", u"全牙螺杆",     u"根", u"M6×1m|M8×1m|M10×1m|M12×1m|M16×1m", 2.4, 15.8, 80, 20},
    {u"MF", u"玻璃胶",       u"支", u"酸性 300ml 透明|酸性 300ml 黑色|中性 300ml 透明|中性 300ml 白色|中性防霉 300ml", 5.6, 12.8, 120, 60},
    {u"MF", u"发泡胶",       u"瓶", u"500ml|750ml|900ml", 11.5, 19, 60, 40},
    {u"MF", u"生料带",       u"卷", u"15m|20m|30m", 0.8, 1.9, 300, 150},
    {u"MF", u"密封圈",       u"个", u"Φ10×2|Φ12×2|Φ16×2.5|Φ20×2.5|Φ25×3|Φ32×3|Φ40×3.5", 0.05, 0.42, 500, 150},
    {u"MJ", u"树脂切割片",   u"片", u"105×1.2×16|125×1.2×22|180×1.6×22|230×2×22|300×3×25|355×3×25", 1.5, 12.6, 300, 60},
    {u"MJ", u"百叶片",       u"片", u"100×16 60目|100×16 80目|100×16 120目|125×22 80目", 2.6, 4.5, 150, 80},
    {u"MJ", u"直柄麻花钻头", u"支", u"Φ2|Φ2.5|Φ3|Φ3.5|Φ4|Φ4.5|Φ5|Φ6|Φ8|Φ10|Φ12|Φ13", 0.9, 14.8, 150, 30},
    {u"MJ", u"木工开孔器",   u"支", u"Φ20|Φ25|Φ30|Φ35|Φ40|Φ50", 5.5, 18, 30, 10},
    {u"MJ", u"砂纸",         u"张", u"60目|80目|120目|180目|240目|400目|800目|1000目", 0.55, 0.75, 500, 300},
    {u"PZ", u"膨胀螺栓",     u"套", u"M6×50|M6×60|M8×60|M8×80|M10×80|M10×100|M12×100|M12×120|M16×150", 0.22, 3.6, 800, 100},
    {u"PZ", u"塑料膨胀管",   u"包", u"Φ6 100只|Φ8 100只|Φ10 50只|Φ12 50只", 2.1, 5.8, 150, 60},
    {u"PZ", u"铝抽芯铆钉",   u"盒", u"3.2×8 1000只|3.2×10 1000只|4×10 1000只|4×13 500只|5×16 500只", 14.5, 29, 50, 20},
    {u"PZ", u"钢排钉",       u"盒", u"ST-18|ST-25|ST-32|ST-38|ST-50|ST-64", 9.8, 19.6, 60, 30},
    {u"SG", u"活动扳手",     u"把", u"150mm|200mm|250mm|300mm|375mm", 12.8, 46, 25, 8},
    {u"SG", u"梅花开口扳手", u"把", u"8mm|10mm|12mm|13mm|14mm|17mm|19mm|22mm|24mm", 3.6, 13.5, 40, 15},
    {u"SG", u"十字螺丝刀",   u"把", u"3×75|5×75|5×100|6×100|6×150|8×200", 3.2, 9.2, 60, 20},
    {u"SG", u"钢丝钳",       u"把", u"150mm|175mm|200mm", 12.5, 19.8, 30, 20},
    {u"SG", u"羊角锤",       u"把", u"0.25kg|0.5kg|0.75kg", 11, 23.5, 25, 15},
    {u"SG", u"钢卷尺",       u"把", u"3m|5m|7.5m|10m", 4.2, 15.6, 80, 25},
    {u"SG", u"内六角扳手",   u"支", u"2mm|2.5mm|3mm|4mm|5mm|6mm|8mm|10mm", 0.5, 4.6, 100, 40},
    {u"SJ", u"铜挂锁",       u"把", u"25mm|32mm|38mm|50mm|63mm|75mm", 5.2, 36, 50, 12},
    {u"SJ", u"不锈钢合页",   u"片", u"2寸|2.5寸|3寸|3.5寸|4寸|5寸", 0.9, 6.8, 200, 60},
    {u"SJ", u"抽屉导轨",     u"副", u"250mm|300mm|350mm|400mm|450mm|500mm", 9.5, 19, 50, 25},
    {u"SJ", u"插销",         u"个", u"3寸|4寸|6寸|8寸", 1.3, 4.2, 100, 40},
    {u"SJ", u"执手门锁",     u"套", u"单舌|双舌|静音双舌", 42, 86, 12, 6},
};

struct PartnerSeed {
    QStringView name, address, contact;
};

inline constexpr PartnerSeed supplierSeeds[] = {
    {u"云州市恒固紧固件厂",           u"云州市北屏区工业一路12号",     u"张德明"},
    {u"澜江市远帆标准件有限公司",     u"澜江市东湾镇兴业路36号",       u"刘海燕"},
    {u"青岚市聚力螺栓制造有限公司",   u"青岚市南屿工业园3栋",         u"马国强"},
    {u"禾川市精准紧固件经营部",       u"禾川市五金市场A区108号",       u"何雪梅"},
    {u"云州市石桥工具有限公司",     u"云州市经开区创新大道201号",     u"孙立新"},
    {u"澜江市力健手动工具厂",         u"澜江市西塘村工业区7号",       u"郭建平"},
    {u"青岚市迅达电动工具商行",       u"青岚市机电城2楼216号",         u"梁伟"},
    {u"沐川市锐锋磨具有限公司",       u"沐川市砂轮路55号",             u"韩玉兰"},
    {u"禾川市金钻刃具厂",             u"禾川市城北工业区9号",         u"冯志刚"},
    {u"云州市西山锁具厂",       u"云州市锁具工业园5栋",         u"许春生"},
    {u"澜江市门顺建筑五金厂",         u"澜江市河西路77号",             u"邓秀英"},
    {u"青岚市通源管业有限公司",       u"青岚市临港大道310号",         u"曹永福"},
    {u"沐川市清泉阀门厂",             u"沐川市阀门工业区18号",         u"彭海涛"},
    {u"禾川市云河胶粘剂厂",     u"禾川市化工路26号",             u"曾丽"},
    {u"云州市明远电料批发部",         u"云州市灯具城C区32号",         u"萧文华"},
    {u"澜江市亮佳照明有限公司",       u"澜江市科技园光明路8号",       u"田振宇"},
    {u"青岚市铜达电线厂",             u"青岚市电缆路101号",           u"董桂芳"},
    {u"沐川市安行劳保用品有限公司",   u"沐川市商贸城6栋12号",         u"袁浩"},
    {u"禾川市护佑手套厂",             u"禾川市纺织路43号",             u"潘小红"},
    {u"云州市百汇五金批发有限公司",   u"云州市五金城东路5号",         u"蒋立军"},
};

inline constexpr PartnerSeed consigneeSeeds[] = {
    {u"门市零售",                     u"",                             u""},
    {u"云州市第三建筑安装队",         u"云州市建设路118号",           u"罗大勇"},
    {u"云州市宏图装饰工程有限公司",   u"云州市人民东路66号",           u"谢婷"},
    {u"云州市新居装修服务部",         u"云州市花园街21号",             u"唐磊"},
    {u"云州市北屏物业管理有限公司",   u"云州市北屏区安居路9号",       u"沈玉珍"},
    {u"云州市金桥钢结构厂",           u"云州市经开区金桥路15号",       u"江志海"},
    {u"云州市顺达机械修造厂",         u"云州市工业三路40号",           u"石建军"},
    {u"云州市兴农农机修理站",         u"云州市南郊镇十字街2号",       u"龚福贵"},
    {u"云州市水务维修中心",           u"云州市滨河路300号",           u"文立波"},
    {u"云州市晨光学校总务处",         u"云州市学府路1号",             u"汤慧敏"},
    {u"云州市北屏社区医院后勤部",         u"云州市健康路28号",             u"熊建华"},
    {u"云州市锦绣大酒店工程部",       u"云州市中心广场3号",           u"白俊"},
    {u"云州市永兴家具厂",             u"云州市木材市场路14号",         u"秦大庆"},
    {u"云州市西苑门窗厂",       u"云州市建材城B区50号",         u"史艳"},
    {u"云州市光影广告制作部",         u"云州市文化街73号",             u"顾晓东"},
    {u"云州市蓝海制冷设备安装部",     u"云州市冷链路6号",             u"侯平"},
    {u"云州市通达汽车修理厂",         u"云州市环城西路211号",         u"邵勇"},
    {u"云州市绿源园林绿化队",         u"云州市苗圃路19号",             u"孟秋菊"},
    {u"云州市平安消防器材安装部",     u"云州市消防路22号",             u"龙飞"},
    {u"云州市万家百货五金柜",         u"云州市商业街100号",           u"段小英"},
    {u"澜江市宝成五金店",             u"澜江市老街45号",               u"雷宝成"},
    {u"澜江市东湾造船厂物资科",       u"澜江市东湾镇船厂路1号",       u"钱卫东"},
    {u"澜江市正信水电安装队",         u"澜江市解放路87号",             u"汪正信"},
    {u"青岚市百姓五金超市",           u"青岚市人民路230号",           u"尹素芬"},
    {u"青岚市恒温暖通工程有限公司",   u"青岚市科技路16号",             u"黎明亮"},
    {u"青岚市福满楼房屋修缮队",       u"青岚市福满街8号",             u"易福生"},
    {u"禾川市顺发五金经营部",         u"禾川市五金市场B区27号",       u"常顺发"},
    {u"禾川市果品加工厂设备科",       u"禾川市果园路33号",             u"武志伟"},
    {u"沐川市新村建材店",             u"沐川市新村路12号",             u"乔玉梅"},
    {u"沐川市长桥养护工区",           u"沐川市长桥路60号",             u"赖长青"},
};
// clang-format on

inline QString digits(qsizetype number, int width)
{
    return QString::number(number).rightJustified(width, u'0');
}

/// Partners by code letter and running number; the last digits of their telephones follow it.
inline std::vector<Partner> partners(QChar letter, int firstTelephone, std::span<const PartnerSeed> seeds)
{
    std::vector<Partner> result;
    for (const PartnerSeed& seed : seeds) {
        const int number = int(result.size());
        Partner partner;
        partner.code = letter + digits(number + 1, 3);
        partner.name = seed.name.toString();
        partner.address = seed.address.toString();
        if (!seed.contact.isEmpty()) { // customers at the counter leave no number
            partner.telephone = u"010-5550"_s + digits(firstTelephone + number, 4);
            partner.fax = u"010-5550"_s + digits(firstTelephone + 50 + number, 4);
            partner.mail = partner.code.toLower() + u"@example.com"_s;
            partner.contact = seed.contact.toString();
        }
        result.push_back(partner);
    }
    return result;
}

inline std::vector<Partner> suppliers()
{
    return partners(u'G', 1100, supplierSeeds);
}
inline std::vector<Partner> consignees()
{
    return partners(u'K', 1200, consigneeSeeds);
}

/// A stock limit as people set one: round where it is large.
inline double roundedLimit(double pieces)
{
    const double step = pieces >= 500 ? 100 : pieces >= 50 ? 10 : pieces >= 10 ? 5 : 1;
    return std::max(1.0, std::round(pieces / step) * step);
}

/// All goods in the order of their codes. A code is the category's, the family's number in it and the size's number,
/// two digits each: LS0206 is the sixth size of the second family of LS.
inline std::vector<Goods> goods()
{
    std::vector<Goods> result;
    QStringView category;
    int familyNumber = 0;
    for (const Family& family : families) {
        familyNumber = family.category == category ? familyNumber + 1 : 1;
        category = family.category;
        const auto sizes = family.sizes.split(u'|');
        for (qsizetype i = 0; i < sizes.size(); ++i) {
            const double place = double(i) / double(sizes.size() - 1);
            const double cost = family.firstCost * std::pow(family.lastCost / family.firstCost, place);
            const double minimum =
                roundedLimit(family.firstMinimum * std::pow(family.lastMinimum / family.firstMinimum, place));
            result.push_back({
                .code = category.toString() + digits(familyNumber, 2) + digits(i + 1, 2),
                .name = family.name.toString(),
                .category = category.toString(),
                .unit = family.unit.toString(),
                .specification = sizes[i].toString(),
                .cost = std::round(cost * 100) / 100,
                .minimum = minimum,
                .maximum = minimum * 5,
            });
        }
    }
    return result;
}

} // namespace demo
